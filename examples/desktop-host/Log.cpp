#include "Log.h"

#include <log4cxx/appenderskeleton.h>
#include <log4cxx/basicconfigurator.h>
#include <log4cxx/helpers/pool.h>
#include <log4cxx/helpers/transcoder.h>
#include <log4cxx/level.h>
#include <log4cxx/logger.h>
#include <log4cxx/logmanager.h>
#include <log4cxx/patternlayout.h>

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

void LogQueue::setWindow(HWND window)
{
    const std::lock_guard lock(m_mutex);
    m_window = window;
    if (m_window != nullptr && !m_lines.empty()) {
        PostMessageW(m_window, WM_LOG_LINES, 0, 0);
    }
}

void LogQueue::add(std::wstring line)
{
    const std::lock_guard lock(m_mutex);
    if (m_lines.empty() && m_window != nullptr) {
        PostMessageW(m_window, WM_LOG_LINES, 0, 0);
    }
    m_lines.push_back(std::move(line));
    if (m_lines.size() > limit) {
        m_lines.pop_front();
        ++m_lost;
    }
}

std::deque<std::wstring> LogQueue::take()
{
    const std::lock_guard lock(m_mutex);
    auto lines = std::exchange(m_lines, {});
    if (m_lost > 0) {
        lines.push_front(L"(" + std::to_wstring(std::exchange(m_lost, 0)) + L" lines are missing here)\r\n");
    }
    return lines;
}

Log::Log(const std::shared_ptr<LogQueue>& queue)
{
    const auto appender = std::make_shared<log4cxx::QueueAppender>();
    appender->queue = queue;
    appender->setLayout(
        std::make_shared<log4cxx::PatternLayout>(LOG4CXX_STR("%d{HH:mm:ss.SSS}  %-5p  %m%n")));
    // Without a configuration of its own, log4cxx looks for one in the working directory.
    log4cxx::BasicConfigurator::resetConfiguration();
    log4cxx::BasicConfigurator::configure(appender);
    log4cxx::Logger::getRootLogger()->setLevel(log4cxx::Level::getInfo());
}

Log::~Log()
{
    log4cxx::LogManager::shutdown();
}
