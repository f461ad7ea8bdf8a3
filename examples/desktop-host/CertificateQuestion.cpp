#include "CertificateQuestion.h"
#include "CertificateDialog.h"

#include <utility>

bool CertificateQuestion::isTrusted(const CERT_CONTEXT& certificate)
{
    CertificateInfo info = readCertificate(certificate);
    std::unique_lock lock(m_mutex);
    if (m_trusted.count(info.fingerprint) != 0) {
        return true;
    }
    if (m_isRefusing) {
        return false;
    }
    m_certificate = std::move(info);
    m_answer.reset();
    if (PostMessageW(m_window, WM_ASK_ABOUT_CERTIFICATE, 0, 0) == FALSE) {
        return false;
    }
    m_isAnswered.wait(lock, [this] { return m_answer.has_value(); });
    return *m_answer;
}

void CertificateQuestion::ask(const std::wstring& server)
{
    CertificateInfo certificate;
    {
        const std::lock_guard lock(m_mutex);
        if (m_answer) {
            return; // refused meanwhile
        }
        certificate = m_certificate;
    }
    const bool isTrusted = askAboutCertificate(m_window, server, certificate);
    const std::lock_guard lock(m_mutex);
    if (!m_answer) {
        if (isTrusted) {
            m_trusted.insert(certificate.fingerprint);
        }
        m_answer = isTrusted;
        m_isAnswered.notify_one();
    }
}

void CertificateQuestion::refuse()
{
    const HWND dialog = GetLastActivePopup(m_window);
    if (dialog != m_window) { // closed before the operation can end, whose end may close the window
        PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
    }
    const std::lock_guard lock(m_mutex);
    m_isRefusing = true;
    m_answer = false;
    m_isAnswered.notify_one();
}
