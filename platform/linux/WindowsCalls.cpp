#include "WindowsCalls.h"

#include "StringTable.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <string_view>
#include <vector>

namespace
{
struct CountedCertificate : CERT_CONTEXT
{
    CountedCertificate(DWORD encodingType, const BYTE* encoded, DWORD size)
        : CERT_CONTEXT{encodingType, nullptr, size, nullptr, nullptr}, bytes(encoded, encoded + size)
    {
        pbCertEncoded = bytes.data();
    }

    std::vector<BYTE> bytes;
    mutable std::atomic<unsigned> references{1};
};

const CountedCertificate* counted(PCCERT_CONTEXT certificate)
{
    return static_cast<const CountedCertificate*>(certificate);
}

std::wstring_view tableText(UINT id)
{
    switch (id) {
    case IDS_REQUEST_FAILED:
        return L"" IDS_REQUEST_FAILED_TEXT;
    case IDS_CERTIFICATE_REFUSED:
        return L"" IDS_CERTIFICATE_REFUSED_TEXT;
    default:
        return {};
    }
}
} // namespace

BOOL PostMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (window == nullptr || !window->post) {
        return 0;
    }
    try {
        window->post(message, wParam, lParam);
    } catch (...) { // nothing of the host's gets past the call, which the system's own would not throw either
        return 0;
    }
    return 1;
}

int LoadStringW(HINSTANCE /*module*/, UINT id, wchar_t* buffer, int size)
{
    const auto text = tableText(id).substr(0, static_cast<std::size_t>(size) - 1);
    *std::copy(text.begin(), text.end(), buffer) = L'\0';
    return static_cast<int>(text.size());
}

PCCERT_CONTEXT CertCreateCertificateContext(DWORD encodingType, const BYTE* encoded, DWORD size)
{
    return std::make_unique<CountedCertificate>(encodingType, encoded, size).release();
}

PCCERT_CONTEXT CertDuplicateCertificateContext(PCCERT_CONTEXT certificate)
{
    counted(certificate)->references.fetch_add(1, std::memory_order_relaxed);
    return certificate;
}

BOOL CertFreeCertificateContext(PCCERT_CONTEXT certificate)
{
    if (counted(certificate)->references.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        const std::unique_ptr<const CountedCertificate> last(counted(certificate));
    }
    return 1;
}
