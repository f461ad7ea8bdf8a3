#include "MainWindow.h"
#include "Dialogs.h"
#include "Failure.h"
#include "FileToAttach.h"
#include "resource.h"

#include <commctrl.h>

#include <cwchar>
#include <map>
#include <system_error>
#include <utility>

namespace
{
const std::map<int, void (Commands::*)()> commands{
    {IDC_OPEN_SESSION, &Commands::openSession}, {IDC_CLOSE_SESSION, &Commands::closeSession},
    {IDC_SHOW_TICKETS, &Commands::showTickets}, {IDC_NEW_TICKET, &Commands::newTicket},
    {IDC_ADD_NOTE, &Commands::addNote},         {IDC_ATTACH_FILE, &Commands::attachChosenFiles}};

/// Still hidden.
HWND createWindow(DLGPROC procedure)
{
    HWND const window =
        CreateDialogParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(IDD_MAIN), nullptr, procedure, 0);
    if (window == nullptr) {
        throw std::system_error(static_cast<int>(GetLastError()), std::system_category(),
                                "CreateDialogParam");
    }
    return window;
}

const wchar_t* warningOf(const std::wstring& endPoint, bool isTrial)
{
    if (_wcsnicmp(endPoint.c_str(), L"http:", 5) == 0) {
        return isTrial
                   ? L"A trial on this computer, over plain http: for https a certificate would have to be "
                     L"installed."
                   : L"Not encrypted: anyone on the way can read the password and all texts. Use https.";
    }
    if (_wcsnicmp(endPoint.c_str(), L"https:", 6) == 0 && endPoint.compare(0, 6, L"https:") != 0) {
        return L"Write https in small letters: else the server's certificate is not checked.";
    }
    return L"";
}
} // namespace

MainWindow::MainWindow(const Settings& settings)
    : m_initial(settings), m_window(createWindow(&dispatch)), m_log(startLog(m_window)), m_layout(m_window),
      m_tickets(GetDlgItem(m_window, IDC_TICKETS), settings.columnWidths), m_commands(*this)
{
    SetWindowLongPtrW(m_window, DWLP_USER, reinterpret_cast<LONG_PTR>(this));
    SendMessageW(m_window, WM_SETICON, ICON_BIG,
                 reinterpret_cast<LPARAM>(
                     LoadIconW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(IDI_APPLICATION_ICON))));
    prepareLogPane(GetDlgItem(m_window, IDC_LOG));
    SetDlgItemTextW(m_window, IDC_ENDPOINT, settings.endPoint.c_str());
    SetDlgItemTextW(m_window, IDC_USER, settings.userName.c_str());
    SetDlgItemTextW(m_window, IDC_PASSWORD, settings.password.c_str());
    SetDlgItemTextW(m_window, IDC_ENTITY_ID, settings.entityId.c_str());
    CheckRadioButton(m_window, IDC_CLIENT, IDC_ASSET, settings.isAsset ? IDC_ASSET : IDC_CLIENT);
    focusOn(GetDlgItem(m_window, IDC_ENDPOINT));
    showLog(false);
    showIdle();
    showStatus(L"Enter the endpoint and the credentials, then open a session.");
}

void MainWindow::run(int showCommand)
{
    ShowWindow(m_window, showCommand);
    HACCEL const accelerators =
        LoadAcceleratorsW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(IDR_ACCELERATORS));
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        if (TranslateAcceleratorW(m_window, accelerators, &message) == 0 &&
            IsDialogMessageW(m_window, &message) == FALSE) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
    }
}

/// No exception may pass through Windows' own functions.
INT_PTR CALLBACK MainWindow::dispatch(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept
{
    auto* const self = reinterpret_cast<MainWindow*>(GetWindowLongPtrW(window, DWLP_USER));
    if (message == WM_CTLCOLORSTATIC && GetDlgCtrlID(reinterpret_cast<HWND>(lParam)) == IDC_ENDPOINT_HINT) {
        SetTextColor(reinterpret_cast<HDC>(wParam), RGB(0xA0, 0x20, 0x00));
        SetBkMode(reinterpret_cast<HDC>(wParam), TRANSPARENT);
        return reinterpret_cast<INT_PTR>(GetSysColorBrush(COLOR_3DFACE));
    }
    return self != nullptr && self->handle(message, wParam, lParam) ? TRUE : FALSE;
}

bool MainWindow::handle(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_ASYNC_REQUEST_FINISHED:
        m_commands.finished();
        return true;
    case WM_ASK_ABOUT_CERTIFICATE:
        SetWindowLongPtrW(m_window, DWLP_MSGRESULT,
                          m_commands.isTrusted(*reinterpret_cast<const CertificateInfo*>(lParam)) ? 1 : 0);
        return true;
    case WM_LOG_LINES:
        showInLogPane(GetDlgItem(m_window, IDC_LOG), m_log->take());
        return true;
    case WM_COMMAND:
        control(LOWORD(wParam), HIWORD(wParam));
        return true;
    case WM_NOTIFY:
        notify(*reinterpret_cast<NMHDR*>(lParam));
        return true;
    case WM_DROPFILES:
        m_commands.attachFiles(droppedFiles(reinterpret_cast<HDROP>(wParam)));
        return true;
    case WM_SIZE:
        arrange();
        return true;
    case WM_GETMINMAXINFO:
        reinterpret_cast<MINMAXINFO*>(lParam)->ptMinTrackSize = m_layout.smallestSize();
        return true;
    case WM_CLOSE:
        close();
        return true;
    case WM_DESTROY:
        if (!m_initial.isTrial) {
            rememberColumns(m_tickets.widths());
        }
        PostQuitMessage(0);
        return true;
    default:
        return false;
    }
}

/// Something has happened to a control, or a menu or key was used, whose event is 0 or 1.
void MainWindow::control(int id, int event)
{
    if (event == EN_SETFOCUS || event == BN_SETFOCUS) {
        chooseDefault();
    } else if (id == IDC_ENDPOINT && event == EN_CHANGE) {
        SetDlgItemTextW(m_window, IDC_ENDPOINT_HINT,
                        warningOf(controlText(m_window, IDC_ENDPOINT), m_initial.isTrial));
    } else if (event == 0 || event == 1) {
        command(id);
    }
}

void MainWindow::command(int id)
{
    const auto found = commands.find(id);
    if (found != commands.end()) {
        if (m_commands.isAllowed(id)) {
            (m_commands.*found->second)();
        }
    } else if (id == IDC_SHOW_LOG) {
        showLog(!m_hasLog);
    } else if (id >= IDC_SORT_TICKET && id <= IDC_SORT_DETAIL) {
        m_tickets.sortBy(id - IDC_SORT_TICKET);
    } else if (id == IDC_EXIT) {
        close();
    }
}

void MainWindow::notify(NMHDR& header)
{
    if (header.code == HDN_ENDTRACKW) {
        PostMessageW(m_window, WM_SIZE, 0, 0); // the last column takes what is left
    }
    if (header.idFrom != IDC_TICKETS) {
        return;
    }
    switch (header.code) {
    case LVN_GETDISPINFOW:
        m_tickets.answer(reinterpret_cast<NMLVDISPINFOW&>(header));
        break;
    case LVN_COLUMNCLICK:
        m_tickets.sortBy(reinterpret_cast<const NMLISTVIEW&>(header).iSubItem);
        break;
    case LVN_ITEMCHANGED:
        enableCommands();
        break;
    case NM_DBLCLK:
        command(IDC_ADD_NOTE);
        break;
    case NM_SETFOCUS:
        chooseDefault();
        break;
    default:
        break;
    }
}

void MainWindow::arrange()
{
    if (IsIconic(m_window) == FALSE) {
        m_layout.arrange(m_hasLog);
        m_tickets.fillWidth();
    }
}

void MainWindow::showLog(bool isShown)
{
    m_hasLog = isShown;
    if (!isShown && GetFocus() == GetDlgItem(m_window, IDC_LOG)) {
        focusOn(GetDlgItem(m_window, IDC_TICKETS));
    }
    for (const int id : {IDC_LOG_LABEL, IDC_LOG}) {
        ShowWindow(GetDlgItem(m_window, id), isShown ? SW_SHOW : SW_HIDE);
    }
    CheckMenuItem(GetMenu(m_window), IDC_SHOW_LOG, isShown ? MF_CHECKED : MF_UNCHECKED);
    arrange();
}

/// The list and the log can be read at any time; the rest is open to the person when it can do something.
void MainWindow::updateControls()
{
    enableCommands();
    for (const int id : {IDC_ENDPOINT, IDC_USER, IDC_PASSWORD}) {
        enableControl(m_window, id, m_commands.isAllowed(IDC_OPEN_SESSION));
    }
    for (const int id : {IDC_CLIENT, IDC_ASSET, IDC_ENTITY_ID}) {
        enableControl(m_window, id, m_commands.isAllowed(IDC_SHOW_TICKETS));
    }
    const bool canAttach = m_commands.isAllowed(IDC_ATTACH_FILE);
    DragAcceptFiles(m_window, canAttach ? TRUE : FALSE);
    const std::wstring hint = L"to the note on ticket " + m_commands.notedTicket() + L", or drop them";
    SetDlgItemTextW(m_window, IDC_FILE_HINT, canAttach ? hint.c_str() : L"");
}

void MainWindow::enableCommands()
{
    for (const auto& [id, command] : commands) {
        const bool isAllowed = m_commands.isAllowed(id);
        enableControl(m_window, id, isAllowed);
        EnableMenuItem(GetMenu(m_window), static_cast<UINT>(id), isAllowed ? MF_ENABLED : MF_GRAYED);
    }
    chooseDefault();
}

/// What Enter does: a button itself, and elsewhere what the focus suggests.
void MainWindow::chooseDefault()
{
    const int focus = GetDlgCtrlID(GetFocus());
    int chosen = IDC_OPEN_SESSION;
    if (commands.count(focus) != 0) {
        chosen = focus;
    } else if (focus == IDC_TICKETS && m_commands.isAllowed(IDC_ADD_NOTE)) {
        chosen = IDC_ADD_NOTE;
    } else if (m_commands.isSessionOpen()) {
        chosen = IDC_SHOW_TICKETS;
    }
    SendMessageW(m_window, DM_SETDEFID, static_cast<WPARAM>(chosen), 0);
}

/// As Tab does it: with the button that then is the default one.
void MainWindow::focusOn(HWND control) const
{
    SendMessageW(m_window, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(control), TRUE);
}

/// The library still needs the window while an operation runs. Then the session is closed, too.
void MainWindow::close()
{
    if (m_commands.isRunning()) {
        m_isClosing = true;
        m_commands.wrapUp();
        m_commands.refuseCertificates();
        showStatus(L"Waiting for the server's answer, then closing…");
    } else if (IsWindowEnabled(m_window) == FALSE) {
        MessageBeep(MB_OK); // a dialog is open
    } else if (m_commands.isSessionOpen()) {
        m_isClosing = true;
        m_commands.wrapUp();
        m_commands.closeSession();
    } else {
        DestroyWindow(m_window);
    }
}

Settings MainWindow::settings() const
{
    Settings settings = m_initial;
    settings.endPoint = controlText(m_window, IDC_ENDPOINT);
    settings.userName = controlText(m_window, IDC_USER);
    settings.password = controlText(m_window, IDC_PASSWORD);
    settings.entityId = controlText(m_window, IDC_ENTITY_ID);
    settings.isAsset = IsDlgButtonChecked(m_window, IDC_ASSET) == BST_CHECKED;
    return settings;
}

void MainWindow::showTickets(std::vector<TicketListEntry> tickets, const std::wstring& selectedId)
{
    m_tickets.show(std::move(tickets), selectedId);
    updateControls();
}

void MainWindow::showStatus(const std::wstring& status)
{
    SetDlgItemTextW(m_window, IDC_STATUS_BAR, status.c_str());
}

void MainWindow::showWrongEntry(int field, const std::wstring& explanation)
{
    tellFailure(m_window, explanation);
    focusOn(GetDlgItem(m_window, field));
}

/// A disabled control keeps no focus: the list has it meanwhile.
void MainWindow::showBusy(const std::wstring& progress)
{
    HWND const focus = GetFocus();
    updateControls(); // before anything says that the operation runs
    showStatus(progress);
    ShowWindow(GetDlgItem(m_window, IDC_PROGRESS), SW_SHOW);
    SendDlgItemMessageW(m_window, IDC_PROGRESS, PBM_SETMARQUEE, TRUE, 0);
    if (focus != nullptr && IsWindowEnabled(focus) == FALSE) {
        m_busyFocus = focus;
        focusOn(GetDlgItem(m_window, IDC_TICKETS));
    }
}

void MainWindow::showIdle()
{
    if (m_isClosing) {
        close();
        return;
    }
    ShowWindow(GetDlgItem(m_window, IDC_PROGRESS), SW_HIDE);
    updateControls();
    HWND const focus = std::exchange(m_busyFocus, nullptr);
    if (IsWindowEnabled(focus) != FALSE && GetFocus() == GetDlgItem(m_window, IDC_TICKETS)) {
        focusOn(focus);
    }
}

void MainWindow::showFailure(const std::wstring& failure, const ResponseStatus& response)
{
    showStatus(failure + L".");
    tellFailure(m_window, failure + L".\n\n" + explain(response, m_commands.isSessionOpen()));
}
