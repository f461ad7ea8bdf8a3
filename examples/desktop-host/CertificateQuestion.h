#pragma once

#include "CertificateInfo.h"

#include <condition_variable>
#include <mutex>
#include <optional>
#include <set>
#include <string>

/// Posted to the window when a worker waits for `CertificateQuestion::ask`.
constexpr UINT WM_ASK_ABOUT_CERTIFICATE = WM_APP + 1;

/// Takes the library's question about the server's certificate from the operation's thread to the window's.
/// The question is posted, and the worker waits for the answer, not for the window: the window never waits
/// for a worker, and a window that goes away refuses. So neither can hang on the other.
class CertificateQuestion
{
public:
    explicit CertificateQuestion(HWND window) : m_window(window) {}

    /// On the operation's thread. The library asks in every operation; the person is asked until a
    /// certificate is trusted, which then holds until the program ends.
    /// @throws std::runtime_error if the certificate cannot be read, which the library takes for a refusal
    bool isTrusted(const CERT_CONTEXT& certificate);

    /// On the window's thread, on `WM_ASK_ABOUT_CERTIFICATE`.
    /// @param server the name by which the person knows it
    void ask(const std::wstring& server);

    /// On the window's thread: refuses the question that waits and all that come, for the window is closing.
    void refuse();

private:
    const HWND m_window;
    std::mutex m_mutex; ///< of all below
    std::condition_variable m_isAnswered;
    CertificateInfo m_certificate;
    std::optional<bool> m_answer = false; ///< none: a question waits
    std::set<std::wstring> m_trusted;     ///< fingerprints
    bool m_isRefusing = false;
};
