#pragma once

#include "TAVIKVANTRYAPI.h"

#include <string>

enum class CertificateAnswer
{
    ask,
    accept,
    refuse
};

/// Shows the server's certificate and decides about it. The library asks in every operation; the person is
/// asked again only if the server comes with another certificate.
class CertificateQuestion
{
public:
    explicit CertificateQuestion(CertificateAnswer answer) : m_answer(answer) {}

    /// Called on the operation's thread.
    bool isTrusted(const CERT_CONTEXT& certificate);

private:
    CertificateAnswer m_answer;
    std::string m_trustedFingerprint;
};
