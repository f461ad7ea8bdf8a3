#include "EntryDialogs.h"
#include "Controls.h"
#include "resource.h"

#include <commctrl.h>

#include <functional>

namespace
{
/// A dialog whose OK button can be used as soon as a certain field has text.
struct Entry
{
    const std::wstring& title;
    int requiredField;
    std::function<void(HWND)> prepare;
    std::function<void(HWND)> accept;
};

void initialise(HWND dialog, const Entry& entry)
{
    SetWindowTextW(dialog, entry.title.c_str());
    entry.prepare(dialog);
    enableControl(dialog, IDOK, false);
}

void handleCommand(HWND dialog, const Entry& entry, int id)
{
    if (id == entry.requiredField) {
        enableControl(dialog, IDOK, !controlText(dialog, id).empty());
    } else if (id == IDOK && isControlEnabled(dialog, IDOK)) {
        entry.accept(dialog);
        EndDialog(dialog, IDOK);
    } else if (id == IDCANCEL) {
        EndDialog(dialog, IDCANCEL);
    }
}

INT_PTR CALLBACK handleMessage(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(dialog, DWLP_USER, lParam);
        initialise(dialog, *reinterpret_cast<Entry*>(lParam));
        return TRUE;
    }
    const auto* const entry = reinterpret_cast<Entry*>(GetWindowLongPtrW(dialog, DWLP_USER));
    if (message == WM_COMMAND && entry != nullptr) {
        handleCommand(dialog, *entry, LOWORD(wParam));
        return TRUE;
    }
    return FALSE;
}

void show(HWND owner, int resource, Entry entry)
{
    DialogBoxParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(resource), owner, &handleMessage,
                    reinterpret_cast<LPARAM>(&entry));
}
} // namespace

std::optional<TicketCreationInformation> enterTicket(HWND owner, const std::wstring& title)
{
    std::optional<TicketCreationInformation> ticket;
    show(owner, IDD_NEW_TICKET,
         {title, IDC_TICKET_SUBJECT, [](HWND) {},
          [&ticket](HWND dialog) {
              ticket.emplace();
              ticket->subject = controlText(dialog, IDC_TICKET_SUBJECT);
              ticket->detail = controlText(dialog, IDC_TICKET_DETAIL);
          }});
    return ticket;
}

std::optional<TechNote> enterNote(HWND owner, const std::wstring& title)
{
    const auto prepare = [](HWND dialog) {
        SetDlgItemInt(dialog, IDC_WORK_TIME, 15, FALSE);
        SendDlgItemMessageW(dialog, IDC_WORK_TIME, EM_SETLIMITTEXT, 9, 0); // always fits 32 bits
    };
    std::optional<TechNote> note;
    show(owner, IDD_NOTE, {title, IDC_NOTE_TEXT, prepare, [&note](HWND dialog) {
                               note.emplace();
                               note->noteText = controlText(dialog, IDC_NOTE_TEXT);
                               note->workTime = GetDlgItemInt(dialog, IDC_WORK_TIME, nullptr, FALSE);
                               note->isVisible = IsDlgButtonChecked(dialog, IDC_VISIBLE) == BST_CHECKED;
                           }});
    return note;
}
