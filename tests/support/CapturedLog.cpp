#include "support/CapturedLog.h"

#include "support/Text.h"
#include "support/Wait.h"

#include <boost/algorithm/string/predicate.hpp>
#include <boost/range/algorithm_ext/erase.hpp>
#include <log4cxx/appenderskeleton.h>
#include <log4cxx/spi/loggingevent.h>

#include <algorithm>
#include <mutex>

namespace
{
std::vector<log4cxx::LoggerPtr> loggers()
{
    return {log4cxx::Logger::getLogger(L"TAVIKVANTRYAPI"), log4cxx::Logger::getLogger(L"CVantryApi")};
}
} // namespace

namespace log4cxx // its macros look names up from here
{
class CapturingAppender : public AppenderSkeleton
{
public:
    DECLARE_LOG4CXX_OBJECT(CapturingAppender)
    BEGIN_LOG4CXX_CAST_MAP()
    LOG4CXX_CAST_ENTRY(CapturingAppender)
    LOG4CXX_CAST_ENTRY_CHAIN(AppenderSkeleton)
    END_LOG4CXX_CAST_MAP()

    void close() override {}
    bool requiresLayout() const override { return false; }

    std::mutex mutex;
    std::vector<LogLine> lines;
    std::vector<std::pair<std::wstring, std::function<void()>>> actions;

protected:
    void append(const spi::LoggingEventPtr& event, helpers::Pool& /*pool*/) override
    {
        const auto message = wide(event->getRenderedMessage());
        const auto& location = event->getLocationInformation();
        std::vector<std::function<void()>> due;
        {
            const std::lock_guard lock(mutex);
            lines.push_back(
                {wide(event->getLevel()->toString()) + L" " + wide(event->getLoggerName()) + L" " + message,
                 location.getFileName(), location.getLineNumber(), std::this_thread::get_id()});
            for (const auto& [end, action] : actions) {
                if (boost::ends_with(message, end)) {
                    due.push_back(action);
                }
            }
        }
        for (const auto& action : due) {
            action();
        }
    }
};
IMPLEMENT_LOG4CXX_OBJECT(CapturingAppender)
} // namespace log4cxx

CapturedLog::CapturedLog() : m_appender(std::make_shared<log4cxx::CapturingAppender>())
{
    for (const auto& logger : loggers()) {
        logger->setAdditivity(false);
        logger->addAppender(m_appender);
    }
    setLevel(log4cxx::Level::getTrace());
}

CapturedLog::~CapturedLog()
{
    for (const auto& logger : loggers()) {
        logger->removeAppender(m_appender);
        logger->setLevel(log4cxx::Level::getOff());
    }
}

void CapturedLog::setLevel(const log4cxx::LevelPtr& level)
{
    for (const auto& logger : loggers()) {
        logger->setLevel(level);
    }
}

void CapturedLog::onLine(const std::wstring& end, std::function<void()> action)
{
    const std::lock_guard lock(m_appender->mutex);
    m_appender->actions.emplace_back(end, std::move(action));
}

void CapturedLog::forgetActions()
{
    const std::lock_guard lock(m_appender->mutex);
    m_appender->actions.clear();
}

void CapturedLog::clear()
{
    const std::lock_guard lock(m_appender->mutex);
    m_appender->lines.clear();
}

std::vector<LogLine> CapturedLog::lines() const
{
    const std::lock_guard lock(m_appender->mutex);
    return m_appender->lines;
}

std::vector<std::wstring> CapturedLog::texts(Threads wanted) const
{
    auto sorted = lines();
    for (auto line = sorted.begin(); line != sorted.end(); ++line) {
        if (line->text.find(L"; Going to run task") != std::wstring::npos) {
            auto first = line;
            while (first != sorted.begin() && std::prev(first)->thread != line->thread) {
                --first;
            }
            std::rotate(first, line, std::next(line));
        }
    }
    std::vector<std::wstring> result;
    for (const auto& line : sorted) {
        const bool isCallers = line.thread == std::this_thread::get_id();
        if (wanted == Threads::all || isCallers == (wanted == Threads::caller)) {
            result.push_back(line.text);
        }
    }
    return result;
}

std::vector<std::wstring> CapturedLog::containing(const std::wstring& part) const
{
    auto found = texts();
    boost::remove_erase_if(found, [&](const auto& text) { return !boost::contains(text, part); });
    return found;
}

bool CapturedLog::waitFor(const std::wstring& end) const
{
    return becomesTrue(std::chrono::seconds(10), [&] {
        const auto now = lines();
        return std::any_of(now.begin(), now.end(),
                           [&](const auto& line) { return boost::ends_with(line.text, end); });
    });
}
