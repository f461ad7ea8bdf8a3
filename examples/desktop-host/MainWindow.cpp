#include "MainWindow.h"
#include "Controls.h"
#include "Failure.h"
#include "FileToAttach.h"
#include "LogPane.h"
#include "TicketList.h"
#include "resource.h"

#include <commctrl.h>

#include <algorithm>
#include <array>
#include <utility>

namespace
{
constexpr const wchar_t* className = L"VantryDesktopHost";
constexpr SIZE initialSize{860, 640};
constexpr SIZE smallestSize{640, 480};

constexpr std::array commandButtons{IDC_OPEN_SESSION, IDC_CLOSE_SESSION, IDC_SHOW_TICKETS,
                                    IDC_NEW_TICKET,   IDC_ADD_NOTE,      IDC_ATTACH_FILE};

void registerClass(WNDPROC procedure)
{
    HINSTANCE const module = GetModuleHandleW(nullptr);
    WNDCLASSEXW windowClass{};
    windowClass.cbSize = sizeof windowClass;
    windowClass.lpfnWndProc = procedure;
    windowClass.hInstance = module;
    windowClass.hIcon = LoadIconW(module, MAKEINTRESOURCEW(IDI_APPLICATION_ICON));
    windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    windowClass.hbrBackground = GetSysColorBrush(COLOR_3DFACE);
    windowClass.lpszClassName = className;
    if (RegisterClassExW(&windowClass) == 0) {
        throwLastError("RegisterClassEx");
    }
}
} // namespace

MainWindow::MainWindow(const Settings& settings, std::shared_ptr<LogQueue> log, int showCommand)
    : m_log(std::move(log))
{
    registerClass(&dispatch);
    m_window = CreateWindowExW(WS_EX_CONTROLPARENT, className, L"Vantry help desk",
                               WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, CW_USEDEFAULT, CW_USEDEFAULT, 0, 0,
                               nullptr, nullptr, GetModuleHandleW(nullptr), nullptr);
    if (m_window == nullptr) {
        throwLastError("CreateWindowEx");
    }
    createControls(settings);
    m_layout.setDpi(m_window, GetDpiForWindow(m_window));
    m_commands = std::make_unique<Commands>(static_cast<CommandsView&>(*this), m_operations);
    SetWindowLongPtrW(m_window, GWLP_USERDATA,
                      reinterpret_cast<LONG_PTR>(this)); // messages are handled from here on
    SetWindowPos(m_window, nullptr, 0, 0, m_layout.scaled(initialSize.cx), m_layout.scaled(initialSize.cy),
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    m_focus = GetDlgItem(m_window, IDC_ENDPOINT);
    showIdle();
    showStatus(L"Enter the endpoint and the credentials, then open a session.");
    m_log->setWindow(m_window);
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

/// In the order of Tab. A label stands before its field, so that the label's letter leads to the field.
void MainWindow::createControls(const Settings& settings)
{
    const auto label = [this](const wchar_t* text, int id) {
        createControl(m_window, WC_STATICW, text, id, SS_CENTERIMAGE | SS_LEFT | WS_GROUP);
    };
    const auto field = [this](const std::wstring& text, int id, DWORD style = 0) {
        createControl(m_window, WC_EDITW, text.c_str(), id, ES_AUTOHSCROLL | WS_TABSTOP | style,
                      WS_EX_CLIENTEDGE);
    };
    const auto button = [this](const wchar_t* text, int id,
                               DWORD style = BS_PUSHBUTTON | WS_TABSTOP | WS_GROUP) {
        createControl(m_window, WC_BUTTONW, text, id, style);
    };
    label(L"&Endpoint:", IDC_ENDPOINT_LABEL);
    field(settings.endPoint, IDC_ENDPOINT);
    button(L"&Open session", IDC_OPEN_SESSION);
    label(L"&User:", IDC_USER_LABEL);
    field(settings.userName, IDC_USER);
    label(L"&Password:", IDC_PASSWORD_LABEL);
    field(settings.password, IDC_PASSWORD, ES_PASSWORD);
    button(L"C&lose session", IDC_CLOSE_SESSION);
    createControl(m_window, WC_STATICW, L"", IDC_SEPARATOR, SS_ETCHEDHORZ);

    label(L"Tickets of", IDC_TICKETS_LABEL);
    button(L"&client", IDC_CLIENT, BS_AUTORADIOBUTTON | WS_TABSTOP | WS_GROUP);
    button(L"a&sset", IDC_ASSET, BS_AUTORADIOBUTTON);
    CheckRadioButton(m_window, IDC_CLIENT, IDC_ASSET, settings.isAsset ? IDC_ASSET : IDC_CLIENT);
    label(L"w&ith id:", IDC_ENTITY_ID_LABEL);
    field(settings.entityId, IDC_ENTITY_ID);
    button(L"Show &tickets", IDC_SHOW_TICKETS);
    TicketList::create(m_window, IDC_TICKETS);
    button(L"&New ticket…", IDC_NEW_TICKET);
    button(L"&Add note…", IDC_ADD_NOTE);
    button(L"Attach &file…", IDC_ATTACH_FILE);
    label(L"", IDC_DROP_HINT);
    label(L"Lo&g:", IDC_LOG_LABEL);
    LogPane::create(m_window, IDC_LOG);
    HWND const bar = createControl(m_window, STATUSCLASSNAMEW, L"", IDC_STATUS_BAR, SBARS_SIZEGRIP);
    createControl(bar, PROGRESS_CLASSW, L"", IDC_PROGRESS, PBS_MARQUEE);
}

/// No exception may pass through Windows' own functions.
LRESULT CALLBACK MainWindow::dispatch(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept
{
    auto* const self = reinterpret_cast<MainWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    return self != nullptr ? self->handle(message, wParam, lParam)
                           : DefWindowProcW(window, message, wParam, lParam);
}

LRESULT MainWindow::handle(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_ASYNC_REQUEST_FINISHED:
        m_operations.finished();
        return 0;
    case WM_ASK_ABOUT_CERTIFICATE:
        m_commands->certificateQuestion().ask();
        return 0;
    case WM_LOG_LINES:
        LogPane::show(GetDlgItem(m_window, IDC_LOG), *m_log);
        return 0;
    case WM_COMMAND:
        command(LOWORD(wParam));
        return 0;
    case WM_NOTIFY:
        notify(*reinterpret_cast<const NMHDR*>(lParam));
        return 0;
    case WM_DROPFILES: {
        auto files = droppedFiles(reinterpret_cast<HDROP>(wParam));
        if (m_commands->isAllowed(IDC_ATTACH_FILE)) {
            m_commands->attachFiles(std::move(files));
        }
        return 0;
    }
    case WM_SIZE:
        arrange();
        return 0;
    case WM_DPICHANGED:
        changeDpi(LOWORD(wParam), *reinterpret_cast<const RECT*>(lParam));
        return 0;
    case WM_GETMINMAXINFO:
        reinterpret_cast<MINMAXINFO*>(lParam)->ptMinTrackSize = {m_layout.scaled(smallestSize.cx),
                                                                 m_layout.scaled(smallestSize.cy)};
        return 0;
    case WM_CLOSE:
        close();
        return 0;
    case WM_DESTROY:
        m_log->setWindow(nullptr);
        m_commands->certificateQuestion().refuse();
        PostQuitMessage(0);
        return 0;
    case WM_NCDESTROY:
        SetWindowLongPtrW(m_window, GWLP_USERDATA, 0);
        return DefWindowProcW(std::exchange(m_window, nullptr), message, wParam, lParam);
    default:
        break;
    }
    const auto result = handleDialogMessage(message, wParam, lParam);
    return result ? *result : DefWindowProcW(m_window, message, wParam, lParam);
}

/// What makes the keyboard work as in a dialog: the default button, and a focus that is not lost.
std::optional<LRESULT> MainWindow::handleDialogMessage(UINT message, WPARAM wParam, LPARAM /*lParam*/)
{
    switch (message) {
    case DM_GETDEFID:
        return MAKELRESULT(defaultCommand(), DC_HASDEFID);
    case WM_ACTIVATE:
        if (LOWORD(wParam) == WA_INACTIVE) {
            m_focus = GetFocus();
        }
        return std::nullopt;
    case WM_SETFOCUS:
        SetFocus(m_focus);
        return 0;
    default:
        return std::nullopt;
    }
}

/// An accelerator comes here even when its button is disabled.
void MainWindow::command(int id)
{
    if (std::find(commandButtons.begin(), commandButtons.end(), id) == commandButtons.end() ||
        !m_commands->isAllowed(id)) {
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
    default:
        m_commands->attachFiles(chooseFiles(m_window));
        break;
    }
}

void MainWindow::notify(const NMHDR& header)
{
    if (header.idFrom == IDC_TICKETS && header.code == LVN_ITEMCHANGED) {
        enableCommands();
    } else if (header.idFrom == IDC_TICKETS && header.code == NM_DBLCLK) {
        command(IDC_ADD_NOTE);
    }
}

void MainWindow::changeDpi(UINT dpi, const RECT& place)
{
    m_layout.setDpi(m_window, dpi);
    SetWindowPos(m_window, nullptr, place.left, place.top, place.right - place.left, place.bottom - place.top,
                 SWP_NOZORDER | SWP_NOACTIVATE);
    arrange();
}

void MainWindow::arrange()
{
    if (IsIconic(m_window) == FALSE) {
        m_layout.arrange(m_window);
        TicketList::arrangeColumns(GetDlgItem(m_window, IDC_TICKETS), m_layout);
    }
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
    SetDlgItemTextW(m_window, IDC_DROP_HINT, canAttach ? L"Files can also be dropped on this window." : L"");
}

void MainWindow::enableCommands()
{
    for (const int id : commandButtons) {
        enableControl(m_window, id, m_commands->isAllowed(id));
    }
}

void MainWindow::showProgress(bool isShown)
{
    HWND const progress = GetDlgItem(GetDlgItem(m_window, IDC_STATUS_BAR), IDC_PROGRESS);
    ShowWindow(progress, isShown ? SW_SHOW : SW_HIDE);
    SendMessageW(progress, PBM_SETMARQUEE, isShown ? TRUE : FALSE, 0);
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

/// What Enter does in a field.
int MainWindow::defaultCommand() const
{
    return m_commands->isSessionOpen() ? IDC_SHOW_TICKETS : IDC_OPEN_SESSION;
}

Settings MainWindow::settings() const
{
    return {controlText(m_window, IDC_ENDPOINT), controlText(m_window, IDC_USER),
            controlText(m_window, IDC_PASSWORD), controlText(m_window, IDC_ENTITY_ID),
            IsDlgButtonChecked(m_window, IDC_ASSET) == BST_CHECKED};
}

std::wstring MainWindow::selectedTicket() const
{
    return TicketList::selectedId(GetDlgItem(m_window, IDC_TICKETS));
}

void MainWindow::showTickets(const std::vector<TicketListEntry>& tickets, const std::wstring& selectedId)
{
    TicketList::show(GetDlgItem(m_window, IDC_TICKETS), tickets, selectedId);
    updateControls();
}

void MainWindow::showStatus(const std::wstring& status)
{
    SetDlgItemTextW(m_window, IDC_STATUS_BAR, status.c_str());
}

void MainWindow::showWrongEntry(int field, const std::wstring& explanation)
{
    tellFailure(m_window, explanation);
    SetFocus(GetDlgItem(m_window, field));
    SendDlgItemMessageW(m_window, field, EM_SETSEL, 0, -1);
}

/// A disabled control keeps no focus: the list has it meanwhile.
void MainWindow::showBusy(const std::wstring& progress)
{
    HWND const focus = GetFocus();
    updateControls(); // before anything says that the operation runs
    showStatus(progress);
    showProgress(true);
    if (focus != nullptr && IsWindowEnabled(focus) == FALSE) {
        m_busyFocus = focus;
        SetFocus(GetDlgItem(m_window, IDC_TICKETS));
    }
}

void MainWindow::showIdle()
{
    if (m_isClosing) {
        close();
        return;
    }
    showProgress(false);
    updateControls();
    for (const int id : {IDC_OPEN_SESSION, IDC_SHOW_TICKETS}) {
        const auto style = id == defaultCommand() ? BS_DEFPUSHBUTTON : BS_PUSHBUTTON;
        SendDlgItemMessageW(m_window, id, BM_SETSTYLE, static_cast<WPARAM>(style), TRUE);
    }
    HWND const focus = std::exchange(m_busyFocus, nullptr);
    if (IsWindowEnabled(focus) != FALSE && GetFocus() == GetDlgItem(m_window, IDC_TICKETS)) {
        SetFocus(focus);
    }
}

void MainWindow::showFailure(const std::wstring& failure, const ResponseStatus& response)
{
    showStatus(failure + L".");
    tellFailure(m_window, failure + L".\n\n" + explain(response));
}
