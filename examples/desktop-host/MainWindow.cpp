#include "MainWindow.h"
#include "Controls.h"
#include "Failure.h"
#include "FileToAttach.h"
#include "LogPane.h"
#include "resource.h"

#include <commctrl.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace
{
constexpr const wchar_t* className = L"VantryDesktopHost";

constexpr std::array commands{IDC_OPEN_SESSION, IDC_CLOSE_SESSION, IDC_SHOW_TICKETS,
                              IDC_NEW_TICKET,   IDC_ADD_NOTE,      IDC_ATTACH_FILE};

bool isCommand(int id)
{
    return std::find(commands.begin(), commands.end(), id) != commands.end();
}

/// That of dialogs, but with an icon, and found by its name.
void registerClass()
{
    HINSTANCE const module = GetModuleHandleW(nullptr);
    WNDCLASSEXW windowClass{};
    windowClass.cbSize = sizeof windowClass;
    windowClass.lpfnWndProc = DefDlgProcW;
    windowClass.cbWndExtra = DLGWINDOWEXTRA;
    windowClass.hInstance = module;
    windowClass.hIcon = LoadIconW(module, MAKEINTRESOURCEW(IDI_APPLICATION_ICON));
    windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    windowClass.hbrBackground = GetSysColorBrush(COLOR_3DFACE);
    windowClass.lpszClassName = className;
    if (RegisterClassExW(&windowClass) == 0) {
        throwLastError("RegisterClassEx");
    }
}

bool startsWith(const std::wstring& text, std::wstring_view start, bool isCaseIgnored)
{
    const auto length = static_cast<int>(start.size());
    return text.size() >= start.size() && CompareStringOrdinal(text.c_str(), length, start.data(), length,
                                                               isCaseIgnored ? TRUE : FALSE) == CSTR_EQUAL;
}

const wchar_t* warningOf(const std::wstring& endPoint, bool isTrial)
{
    if (startsWith(endPoint, L"http:", true)) {
        return isTrial
                   ? L"A trial on this computer, over plain http: for https a certificate would have to be "
                     L"installed."
                   : L"Not encrypted: anyone on the way can read the password and all texts. Use https.";
    }
    if (startsWith(endPoint, L"https:", true) && !startsWith(endPoint, L"https:", false)) {
        return L"Write https in small letters: else the server's certificate is not checked.";
    }
    return L"";
}
} // namespace

MainWindow::MainWindow(const Settings& settings, std::shared_ptr<LogQueue> log, int showCommand)
    : m_initial(settings), m_log(std::move(log))
{
    registerClass();
    if (CreateDialogParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(IDD_MAIN), nullptr, &dispatch,
                           reinterpret_cast<LPARAM>(this)) == nullptr) {
        throwLastError("CreateDialogParam");
    }
    ShowWindow(m_window, showCommand);
}

MainWindow::~MainWindow()
{
    if (m_window != nullptr) {
        DestroyWindow(m_window);
    }
    UnregisterClassW(className, GetModuleHandleW(nullptr));
}

void MainWindow::run()
{
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

void MainWindow::initialise(HWND window)
{
    m_window = window;
    m_layout = Layout(window);
    m_tickets = TicketList(GetDlgItem(window, IDC_TICKETS), m_initial.columnWidths);
    LogPane::prepare(GetDlgItem(window, IDC_LOG));
    m_commands = std::make_unique<Commands>(static_cast<CommandsView&>(*this), m_operations);
    SetDlgItemTextW(window, IDC_ENDPOINT, m_initial.endPoint.c_str());
    SetDlgItemTextW(window, IDC_USER, m_initial.userName.c_str());
    SetDlgItemTextW(window, IDC_PASSWORD, m_initial.password.c_str());
    SetDlgItemTextW(window, IDC_ENTITY_ID, m_initial.entityId.c_str());
    CheckRadioButton(window, IDC_CLIENT, IDC_ASSET, m_initial.isAsset ? IDC_ASSET : IDC_CLIENT);
    showLog(false);
    showIdle();
    showStatus(L"Enter the endpoint and the credentials, then open a session.");
    m_log->setWindow(window);
}

/// No exception may pass through Windows' own functions.
INT_PTR CALLBACK MainWindow::dispatch(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept
{
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(window, DWLP_USER, lParam);
        reinterpret_cast<MainWindow*>(lParam)->initialise(window);
        return TRUE;
    }
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
        m_operations.finished();
        return true;
    case WM_ASK_ABOUT_CERTIFICATE:
        m_commands->certificateQuestion().ask(serverName());
        return true;
    case WM_LOG_LINES:
        LogPane::show(GetDlgItem(m_window, IDC_LOG), *m_log);
        return true;
    case WM_COMMAND:
        control(LOWORD(wParam), HIWORD(wParam));
        return true;
    case WM_NOTIFY:
        notify(*reinterpret_cast<NMHDR*>(lParam));
        return true;
    case WM_DROPFILES: {
        auto files = droppedFiles(reinterpret_cast<HDROP>(wParam));
        if (m_commands->isAllowed(IDC_ATTACH_FILE)) {
            m_commands->attachFiles(std::move(files));
        }
        return true;
    }
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
        m_log->setWindow(nullptr);
        m_commands->certificateQuestion().refuse();
        PostQuitMessage(0);
        return true;
    case WM_NCDESTROY:
        SetWindowLongPtrW(std::exchange(m_window, nullptr), DWLP_USER, 0);
        return false;
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
    if (isCommand(id) && !m_commands->isAllowed(id)) {
        return;
    }
    switch (id) {
    case IDC_OPEN_SESSION:
        m_commands->openSession();
        break;
    case IDC_CLOSE_SESSION:
        m_commands->closeSession();
        break;
    case IDC_SHOW_TICKETS:
        m_commands->showTickets();
        break;
    case IDC_NEW_TICKET:
        m_commands->newTicket();
        break;
    case IDC_ADD_NOTE:
        m_commands->addNote();
        break;
    case IDC_ATTACH_FILE:
        m_commands->attachFiles(chooseFiles(m_window));
        break;
    case IDC_SHOW_LOG:
        showLog(!m_hasLog);
        break;
    case IDC_SORT_TICKET:
    case IDC_SORT_SUBJECT:
    case IDC_SORT_CLIENT:
    case IDC_SORT_DETAIL:
        m_tickets.sortBy(id - IDC_SORT_TICKET);
        break;
    case IDC_EXIT:
        close();
        break;
    default:
        break;
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
        enableControl(m_window, id, m_commands->isAllowed(IDC_OPEN_SESSION));
    }
    for (const int id : {IDC_CLIENT, IDC_ASSET, IDC_ENTITY_ID}) {
        enableControl(m_window, id, m_commands->isAllowed(IDC_SHOW_TICKETS));
    }
    const bool canAttach = m_commands->isAllowed(IDC_ATTACH_FILE);
    DragAcceptFiles(m_window, canAttach ? TRUE : FALSE);
    const std::wstring hint = L"to the note on ticket " + m_commands->notedTicket() + L", or drop them";
    SetDlgItemTextW(m_window, IDC_FILE_HINT, canAttach ? hint.c_str() : L"");
}

void MainWindow::enableCommands()
{
    for (const int id : commands) {
        const bool isAllowed = m_commands->isAllowed(id);
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
    if (isCommand(focus)) {
        chosen = focus;
    } else if (focus == IDC_TICKETS && m_commands->isAllowed(IDC_ADD_NOTE)) {
        chosen = IDC_ADD_NOTE;
    } else if (m_commands->isSessionOpen()) {
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
    if (m_operations.isRunning()) {
        m_isClosing = true;
        m_operations.wrapUp();
        m_commands->certificateQuestion().refuse();
        showStatus(L"Waiting for the server's answer, then closing…");
    } else if (IsWindowEnabled(m_window) == FALSE) {
        MessageBeep(MB_OK); // a dialog is open
    } else if (m_commands->isSessionOpen()) {
        m_isClosing = true;
        m_operations.wrapUp();
        m_commands->closeSession();
    } else {
        DestroyWindow(m_window);
    }
}

/// Of the endpoint: host and port.
std::wstring MainWindow::serverName() const
{
    std::wstring name = controlText(m_window, IDC_ENDPOINT);
    const auto scheme = name.find(L"://");
    name.erase(0, scheme == std::wstring::npos ? 0 : scheme + 3);
    name.resize(std::min(name.find_first_of(L"/?#"), name.size()));
    return name.substr(name.rfind(L'@') + 1); // all if there is none
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
    tellFailure(m_window, failure + L".\n\n" + explain(response, m_commands->isSessionOpen()));
}
