#include "CertificateDialog.h"
#include "resource.h"

#include <commctrl.h>

namespace
{
struct Question
{
    const CertificateInfo& certificate;
    CertificateAnswer answer;
};

void fill(HWND dialog, const CertificateInfo& certificate)
{
    SendDlgItemMessageW(dialog, IDC_CERTIFICATE_ICON, STM_SETICON,
                        reinterpret_cast<WPARAM>(LoadIconW(nullptr, IDI_INFORMATION)), 0);
    SetDlgItemTextW(dialog, IDC_SUBJECT, certificate.subject.c_str());
    SetDlgItemTextW(dialog, IDC_ISSUER, certificate.issuer.c_str());
    SetDlgItemTextW(dialog, IDC_VALIDITY, certificate.validity.c_str());
    const auto half = certificate.fingerprint.size() / 2;
    SetDlgItemTextW(
        dialog, IDC_FINGERPRINT,
        (certificate.fingerprint.substr(0, half) + L":\r\n" + certificate.fingerprint.substr(half + 1))
            .c_str());
    CheckDlgButton(dialog, IDC_REMEMBER, BST_CHECKED);
}

INT_PTR CALLBACK handleMessage(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(dialog, DWLP_USER, lParam);
        fill(dialog, reinterpret_cast<Question*>(lParam)->certificate);
        SetFocus(GetDlgItem(dialog, IDCANCEL)); // Enter must not trust by accident
        return FALSE;
    }
    if (message == WM_COMMAND && (LOWORD(wParam) == IDOK || LOWORD(wParam) == IDCANCEL)) {
        auto& question = *reinterpret_cast<Question*>(GetWindowLongPtrW(dialog, DWLP_USER));
        question.answer = {LOWORD(wParam) == IDOK, IsDlgButtonChecked(dialog, IDC_REMEMBER) == BST_CHECKED};
        EndDialog(dialog, LOWORD(wParam));
        return TRUE;
    }
    return FALSE;
}
} // namespace

CertificateAnswer askAboutCertificate(HWND owner, const CertificateInfo& certificate)
{
    Question question{certificate, {}};
    DialogBoxParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(IDD_CERTIFICATE), owner, &handleMessage,
                    reinterpret_cast<LPARAM>(&question));
    return question.answer;
}
