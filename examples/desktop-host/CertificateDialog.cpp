#include "CertificateDialog.h"
#include "resource.h"

#include <commctrl.h>

namespace
{
struct Question
{
    const std::wstring& server;
    const CertificateInfo& certificate;
};

void fill(HWND dialog, const Question& question)
{
    SendDlgItemMessageW(dialog, IDC_CERTIFICATE_ICON, STM_SETICON,
                        reinterpret_cast<WPARAM>(LoadIconW(nullptr, IDI_WARNING)), 0);
    SetDlgItemTextW(dialog, IDC_SERVER,
                    (L"The server " + question.server + L" shows this certificate.").c_str());
    const CertificateInfo& certificate = question.certificate;
    SetDlgItemTextW(dialog, IDC_SUBJECT, certificate.subject.c_str());
    SetDlgItemTextW(dialog, IDC_ISSUER, certificate.issuer.c_str());
    SetDlgItemTextW(dialog, IDC_VALIDITY, certificate.validity.c_str());
    const auto half = certificate.fingerprint.size() / 2;
    SetDlgItemTextW(
        dialog, IDC_FINGERPRINT,
        (certificate.fingerprint.substr(0, half) + L":\r\n" + certificate.fingerprint.substr(half + 1))
            .c_str());
}

INT_PTR CALLBACK handleMessage(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_INITDIALOG) {
        fill(dialog, *reinterpret_cast<const Question*>(lParam));
        SetFocus(GetDlgItem(dialog, IDCANCEL)); // Enter must not trust by accident
        return FALSE;
    }
    if (message == WM_COMMAND && (LOWORD(wParam) == IDOK || LOWORD(wParam) == IDCANCEL)) {
        EndDialog(dialog, LOWORD(wParam));
        return TRUE;
    }
    return FALSE;
}
} // namespace

bool askAboutCertificate(HWND owner, const std::wstring& server, const CertificateInfo& certificate)
{
    const Question question{server, certificate};
    return DialogBoxParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(IDD_CERTIFICATE), owner,
                           &handleMessage, reinterpret_cast<LPARAM>(&question)) == IDOK;
}
