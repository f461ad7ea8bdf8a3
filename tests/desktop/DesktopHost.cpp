#include "desktop/DesktopHost.h"

#include "support/Wait.h"

#include <commctrl.h>
#include <shlobj.h>

#include <array>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <system_error>

namespace
{
std::filesystem::path program()
{
    std::array<wchar_t, 32768> path{};
    GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    return std::filesystem::path(path.data()).replace_filename(L"vantry-desktop-host.exe");
}

} // namespace

void waitUntil(const std::string& what, const std::function<bool()>& isTrue)
{
    if (!becomesTrue(std::chrono::seconds(30), isTrue)) {
        throw std::runtime_error("waited in vain for " + what);
    }
}

HWND HostWindow::control(int id) const
{
    HWND const found = GetDlgItem(m_window, id);
    if (found == nullptr) {
        throw std::runtime_error("there is no control " + std::to_string(id));
    }
    return found;
}

std::wstring HostWindow::text(int id) const
{
    HWND const window = control(id);
    std::wstring text(static_cast<std::size_t>(SendMessageW(window, WM_GETTEXTLENGTH, 0, 0)) + 1, L'\0');
    text.resize(static_cast<std::size_t>(
        SendMessageW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()))));
    return text;
}

HWND HostWindow::usableControl(int id) const
{
    waitUntil("control " + std::to_string(id) + " to be enabled",
              [&] { return IsWindowEnabled(m_window) != FALSE && isEnabled(id); });
    return control(id);
}

/// As typing does: the window is told of the change.
void HostWindow::enter(int id, const std::wstring& text) const
{
    HWND const field = usableControl(id);
    SendMessageW(field, EM_SETSEL, 0, -1);
    SendMessageW(field, EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(text.c_str()));
}

/// Posted, since what follows on it may be a dialog.
void HostWindow::click(int id) const
{
    PostMessageW(usableControl(id), BM_CLICK, 0, 0);
}

void HostWindow::closeBy(int id) const
{
    click(id);
    waitUntil("the window to go", [this] { return !exists(); });
}

Process::Process(std::wstring commandLine, bool inherits)
{
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    if (CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, inherits ? TRUE : FALSE, 0, nullptr,
                       nullptr, &startup, &m_information) == FALSE) {
        throw std::runtime_error("cannot start a process: error " + std::to_string(GetLastError()));
    }
    CloseHandle(m_information.hThread);
}

Process::~Process()
{
    TerminateProcess(handle(), 99);
    CloseHandle(handle());
}

DWORD Process::exitCode() const
{
    DWORD code = STILL_ACTIVE;
    waitUntil("the end of the program", [&] {
        GetExitCodeProcess(handle(), &code);
        return code != STILL_ACTIVE;
    });
    return code;
}

static void require(bool succeeded, const char* what)
{
    if (!succeeded) {
        throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), what);
    }
}

/// Memory of the host's process, which some messages have to point to.
void* DesktopHost::allocate(std::size_t size) const
{
    void* const address = VirtualAllocEx(m_process.handle(), nullptr, size, MEM_COMMIT, PAGE_READWRITE);
    require(address != nullptr, "VirtualAllocEx");
    return address;
}

void DesktopHost::write(void* address, const void* data, std::size_t size) const
{
    require(WriteProcessMemory(m_process.handle(), address, data, size, nullptr) != FALSE,
            "WriteProcessMemory");
}

DesktopHost::DesktopHost(const std::wstring& arguments)
    : m_process(L"\"" + program().native() + L"\" " + arguments, false)
{
    waitUntil("the main window", [this] {
        m_window = HostWindow(findWindow(false));
        return m_window.exists();
    });
}

/// The visible window of the host's process that another one owns, or that none does: all are dialogs.
HWND DesktopHost::findWindow(bool isOwned) const
{
    HWND window = nullptr;
    while ((window = FindWindowExW(nullptr, window, L"#32770", nullptr)) != nullptr) {
        DWORD process = 0;
        GetWindowThreadProcessId(window, &process);
        if (process == m_process.id() && IsWindowVisible(window) != FALSE &&
            (GetWindow(window, GW_OWNER) != nullptr) == isOwned) {
            return window;
        }
    }
    return nullptr;
}

HostWindow DesktopHost::dialog() const
{
    waitUntil("a dialog", [this] { return hasDialog(); });
    return HostWindow(findWindow(true));
}

void DesktopHost::waitForStatus(const std::wstring& status) const
{
    waitUntil("the status \"" + std::filesystem::path(status).u8string() + "\"",
              [&] { return !isBusy() && m_window.text(IDC_STATUS_BAR) == status; });
}

std::vector<std::vector<std::wstring>> DesktopHost::tickets() const
{
    HWND const list = m_window.control(IDC_TICKETS);
    struct
    {
        LVITEMW item;
        std::array<wchar_t, 300> text;
    } query{};
    const auto release = [this](void* address) {
        VirtualFreeEx(m_process.handle(), address, 0, MEM_RELEASE);
    };
    const std::unique_ptr<void, decltype(release)> memory(allocate(sizeof query), release);
    std::vector<std::vector<std::wstring>> rows(
        static_cast<std::size_t>(SendMessageW(list, LVM_GETITEMCOUNT, 0, 0)));
    for (std::size_t row = 0; row < rows.size(); ++row) {
        for (int column = 0; column < 4; ++column) {
            query.item.iSubItem = column;
            query.item.cchTextMax = static_cast<int>(query.text.size());
            query.item.pszText = reinterpret_cast<wchar_t*>(static_cast<char*>(memory.get()) +
                                                            offsetof(decltype(query), text));
            write(memory.get(), &query, sizeof query);
            SendMessageW(list, LVM_GETITEMTEXTW, row, reinterpret_cast<LPARAM>(memory.get()));
            require(ReadProcessMemory(m_process.handle(), memory.get(), &query, sizeof query, nullptr) !=
                        FALSE,
                    "ReadProcessMemory");
            rows[row].emplace_back(query.text.data());
        }
    }
    return rows;
}

void DesktopHost::pressKey(WPARAM key) const
{
    const int target = focus();
    PostMessageW(m_window.control(target), WM_KEYDOWN, key, 1);
    PostMessageW(m_window.control(target), WM_KEYUP, key, 0xC0000001);
}

int DesktopHost::focus() const
{
    GUITHREADINFO info{};
    info.cbSize = sizeof info;
    GetGUIThreadInfo(GetWindowThreadProcessId(m_window.handle(), nullptr), &info);
    return GetDlgCtrlID(info.hwndFocus);
}

std::vector<int> DesktopHost::defaultButtons() const
{
    std::vector<int> ids;
    for (HWND child = GetWindow(m_window.handle(), GW_CHILD); child != nullptr;
         child = GetWindow(child, GW_HWNDNEXT)) {
        if ((SendMessageW(child, WM_GETDLGCODE, 0, 0) & DLGC_DEFPUSHBUTTON) != 0) {
            ids.push_back(GetDlgCtrlID(child));
        }
    }
    return ids;
}

/// What the system's shell posts when files are dropped. The host frees it.
void DesktopHost::drop(const std::vector<std::filesystem::path>& files) const
{
    std::wstring names;
    for (const auto& file : files) {
        names += file.native() + L'\0';
    }
    std::vector<char> data(sizeof(DROPFILES) + (names.size() + 1) * sizeof(wchar_t), '\0');
    DROPFILES header{};
    header.pFiles = sizeof header;
    header.fWide = TRUE;
    std::memcpy(data.data(), &header, sizeof header);
    std::memcpy(data.data() + sizeof header, names.data(), names.size() * sizeof(wchar_t));
    void* const memory = allocate(data.size());
    write(memory, data.data(), data.size());
    require(PostMessageW(m_window.handle(), WM_DROPFILES, reinterpret_cast<WPARAM>(memory), 0) != FALSE,
            "PostMessage");
}
