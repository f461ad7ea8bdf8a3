#include "Dialogs.h"
#include "resource.h"

#include <commctrl.h>

#include <functional>

namespace
{
struct Dialog
{
    std::function<void(HWND)> prepare;
    std::function<void(HWND)> accept;
    int requiredField = 0; ///< the OK button can be used as long as it has text; 0: always
};

void handleCommand(HWND window, const Dialog& dialog, int id)
{
    if (id == dialog.requiredField) {
        enableControl(window, IDOK, !controlText(window, id).empty());
    } else if (id == IDOK && IsWindowEnabled(GetDlgItem(window, IDOK)) != FALSE) {
        dialog.accept(window);
        EndDialog(window, IDOK);
    } else if (id == IDCANCEL) {
        EndDialog(window, IDCANCEL);
    }
}

INT_PTR CALLBACK handleMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(window, DWLP_USER, lParam);
        reinterpret_cast<const Dialog*>(lParam)->prepare(window);
        return TRUE;
    }
    const auto* const dialog = reinterpret_cast<const Dialog*>(GetWindowLongPtrW(window, DWLP_USER));
    if (message == WM_COMMAND && dialog != nullptr) {
        handleCommand(window, *dialog, LOWORD(wParam));
        return TRUE;
    }
    return FALSE;
}

void show(HWND owner, int resource, const Dialog& dialog)
{
    DialogBoxParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(resource), owner, &handleMessage,
                    reinterpret_cast<LPARAM>(&dialog));
}
} // namespace

std::wstring controlText(HWND parent, int id)
{
    HWND const control = GetDlgItem(parent, id);
    std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(control)) + 1, L'\0');
    text.resize(
        static_cast<std::size_t>(GetWindowTextW(control, text.data(), static_cast<int>(text.size()))));
    return text;
}

void enableControl(HWND parent, int id, bool isEnabled)
{
    EnableWindow(GetDlgItem(parent, id), isEnabled ? TRUE : FALSE);
}

std::optional<TicketCreationInformation> enterTicket(HWND owner, const std::wstring& title)
{
    std::optional<TicketCreationInformation> ticket;
    Dialog dialog;
    dialog.prepare = [&title](HWND window) { SetWindowTextW(window, title.c_str()); };
    dialog.requiredField = IDC_TICKET_SUBJECT;
    dialog.accept = [&ticket](HWND window) {
        ticket.emplace();
        ticket->subject = controlText(window, IDC_TICKET_SUBJECT);
        ticket->detail = controlText(window, IDC_TICKET_DETAIL);
    };
    show(owner, IDD_NEW_TICKET, dialog);
    return ticket;
}

std::optional<TechNote> enterNote(HWND owner, const std::wstring& title)
{
    std::optional<TechNote> note;
    Dialog dialog;
    dialog.prepare = [&title](HWND window) {
        SetWindowTextW(window, title.c_str());
        SendDlgItemMessageW(window, IDC_WORK_TIME, EM_SETLIMITTEXT, 9, 0); // always fits 32 bits
    };
    dialog.requiredField = IDC_NOTE_TEXT;
    dialog.accept = [&note](HWND window) {
        note.emplace();
        note->noteText = controlText(window, IDC_NOTE_TEXT);
        note->workTime = GetDlgItemInt(window, IDC_WORK_TIME, nullptr, FALSE);
        note->isVisible = IsDlgButtonChecked(window, IDC_VISIBLE) == BST_CHECKED;
    };
    show(owner, IDD_NOTE, dialog);
    return note;
}

bool askAboutCertificate(HWND owner, const std::wstring& server, const CertificateInfo& certificate)
{
    bool isTrusted = false;
    Dialog dialog;
    dialog.prepare = [&](HWND window) {
        SendDlgItemMessageW(window, IDC_CERTIFICATE_ICON, STM_SETICON,
                            reinterpret_cast<WPARAM>(LoadIconW(nullptr, IDI_WARNING)), 0);
        SetDlgItemTextW(window, IDC_SERVER, (L"The server " + server + L" shows this certificate.").c_str());
        SetDlgItemTextW(window, IDC_SUBJECT, certificate.subject.c_str());
        SetDlgItemTextW(window, IDC_ISSUER, certificate.issuer.c_str());
        SetDlgItemTextW(window, IDC_VALIDITY, certificate.validity.c_str());
        std::wstring fingerprint = certificate.fingerprint;
        fingerprint.insert(fingerprint.size() / 2 + 1, L"\r\n"); // after a colon
        SetDlgItemTextW(window, IDC_FINGERPRINT, fingerprint.c_str());
    };
    dialog.accept = [&isTrusted](HWND) { isTrusted = true; };
    show(owner, IDD_CERTIFICATE, dialog);
    return isTrusted;
}
