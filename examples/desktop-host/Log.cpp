#include "Log.h"

#include <commctrl.h>

#include <log4cxx/appenderskeleton.h>
#include <log4cxx/basicconfigurator.h>
#include <log4cxx/helpers/pool.h>
#include <log4cxx/helpers/transcoder.h>
#include <log4cxx/level.h>
#include <log4cxx/logger.h>
#include <log4cxx/logmanager.h>
#include <log4cxx/patternlayout.h>

#include <cstdlib>
#include <utility>

namespace log4cxx // its macros look names up from here
{
/// Called on whatever thread logs.
class QueueAppender : public AppenderSkeleton
{
public:
    DECLARE_LOG4CXX_OBJECT(QueueAppender)
    BEGIN_LOG4CXX_CAST_MAP()
    LOG4CXX_CAST_ENTRY(QueueAppender)
    LOG4CXX_CAST_ENTRY_CHAIN(AppenderSkeleton)
    END_LOG4CXX_CAST_MAP()

    void close() override {}
    bool requiresLayout() const override { return true; }

    std::shared_ptr<LogQueue> queue;

protected:
    void append(const spi::LoggingEventPtr& event, helpers::Pool& pool) override
    {
        LogString text;
        getLayout()->format(text, event, pool);
        LOG4CXX_ENCODE_WCHAR(line, text);
        queue->add(line);
    }
};
IMPLEMENT_LOG4CXX_OBJECT(QueueAppender)
} // namespace log4cxx

namespace
{
constexpr int longest = 256 * 1024; ///< characters, of the pane and of the queue

/// A text field of several lines wants Tab, Enter and Esc for itself; this one leaves them to the window.
LRESULT CALLBACK leaveKeys(HWND pane, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR /*id*/,
                           DWORD_PTR /*data*/)
{
    const LRESULT result = DefSubclassProc(pane, message, wParam, lParam);
    return message == WM_GETDLGCODE ? result & ~(DLGC_WANTALLKEYS | DLGC_WANTTAB | DLGC_HASSETSEL) : result;
}

void removeOldest(HWND pane, int length)
{
    const auto line = SendMessageW(pane, EM_LINEFROMCHAR, static_cast<WPARAM>(length), 0);
    SendMessageW(pane, EM_SETSEL, 0, SendMessageW(pane, EM_LINEINDEX, static_cast<WPARAM>(line + 1), 0));
    SendMessageW(pane, EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(L""));
}
} // namespace

void LogQueue::add(const std::wstring& line)
{
    const std::lock_guard lock(m_mutex);
    if (m_lines.empty()) {
        PostMessageW(m_window, WM_LOG_LINES, 0, 0);
    }
    m_lines += line;
    if (m_lines.size() > longest) {
        m_lines.erase(0, m_lines.find(L'\n', m_lines.size() - longest) + 1);
    }
}

std::wstring LogQueue::take()
{
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_lines, {});
}

std::shared_ptr<LogQueue> startLog(HWND window)
{
    const auto queue = std::make_shared<LogQueue>(window);
    const auto appender = std::make_shared<log4cxx::QueueAppender>();
    appender->queue = queue;
    appender->setLayout(
        std::make_shared<log4cxx::PatternLayout>(LOG4CXX_STR("%d{HH:mm:ss.SSS}  %-5p  %m%n")));
    // Without a configuration of its own, log4cxx looks for one in the working directory.
    log4cxx::BasicConfigurator::resetConfiguration();
    log4cxx::BasicConfigurator::configure(appender);
    log4cxx::Logger::getRootLogger()->setLevel(log4cxx::Level::getInfo());
    std::atexit(log4cxx::LogManager::shutdown);
    return queue;
}

void prepareLogPane(HWND pane)
{
    SendMessageW(pane, EM_SETLIMITTEXT, 2 * longest, 0);
    SetWindowSubclass(pane, &leaveKeys, 0, 0);
}

void showInLogPane(HWND pane, const std::wstring& lines)
{
    SendMessageW(pane, WM_SETREDRAW, FALSE, 0);
    const int excess = GetWindowTextLengthW(pane) + static_cast<int>(lines.size()) - longest;
    if (excess > 0) {
        removeOldest(pane, excess);
    }
    const int end = GetWindowTextLengthW(pane);
    SendMessageW(pane, EM_SETSEL, static_cast<WPARAM>(end), end);
    SendMessageW(pane, EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(lines.c_str()));
    SendMessageW(pane, WM_SETREDRAW, TRUE, 0);
    SendMessageW(pane, EM_SCROLLCARET, 0, 0);
    InvalidateRect(pane, nullptr, FALSE);
}
