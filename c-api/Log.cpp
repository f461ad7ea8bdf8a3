#include "Log.h"

#include "Text.h"
#include "Turn.h"

#include "LumoLogging.h"

#include <log4cxx/appenderskeleton.h>
#include <log4cxx/helpers/transcoder.h>
#include <log4cxx/hierarchy.h>
#include <log4cxx/patternlayout.h>
#include <log4cxx/spi/loggingevent.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace
{
using log4cxx::Level;

struct Line
{
    std::int32_t level;
    std::string text;
};

std::string utf8(const log4cxx::LogString& logText)
{
    std::string text;
    log4cxx::helpers::Transcoder::encodeUTF8(logText, text);
    return text;
}

/// log4cxx's number of a `vantry_log_level`.
int checked(std::int32_t level)
{
    constexpr std::array<int, 6> numbers{Level::TRACE_INT, Level::DEBUG_INT, Level::INFO_INT,
                                         Level::WARN_INT,  Level::ERROR_INT, Level::FATAL_INT};
    if (level < VANTRY_LOG_TRACE || level > VANTRY_LOG_FATAL) {
        throw CInterface::Refusal{VANTRY_INVALID_ARGUMENT};
    }
    return numbers[level];
}

/// The `vantry_log_level` of log4cxx's number: but for the lowest, the numbers are multiples of the second.
std::int32_t levelOf(int number)
{
    return std::clamp<std::int32_t>(number / Level::DEBUG_INT, VANTRY_LOG_TRACE, VANTRY_LOG_FATAL);
}
} // namespace

namespace log4cxx // its macros look names up from here
{
/// Writes lines to the file at once. Those for the callback wait for the thread whose turn it is.
class HostAppender : public AppenderSkeleton
{
public:
    DECLARE_LOG4CXX_OBJECT(HostAppender)
    BEGIN_LOG4CXX_CAST_MAP()
    LOG4CXX_CAST_ENTRY(HostAppender)
    LOG4CXX_CAST_ENTRY_CHAIN(AppenderSkeleton)
    END_LOG4CXX_CAST_MAP()

    void close() override {}
    bool requiresLayout() const override { return false; }

    void setCallback(vantry_log_callback callback, void* user, int level)
    {
        const std::lock_guard lock(m_mutex);
        m_callback = callback;
        m_user = user;
        m_callbackLevel = callback == nullptr ? Level::OFF_INT : level;
        m_lines.clear();
    }

    void setFile(std::ofstream file, int level)
    {
        const std::lock_guard lock(m_mutex);
        m_fileLevel = file.is_open() ? level : Level::OFF_INT;
        m_file = std::move(file);
    }

    bool hasCallback() const { return m_callback != nullptr; }
    int lowestLevel() const { return std::min(m_callbackLevel, m_fileLevel); }

    void deliver()
    {
        std::vector<Line> lines;
        {
            const std::lock_guard lock(m_mutex);
            lines.swap(m_lines);
        }
        for (const auto& line : lines) {
            CInterface::callBack([&] { m_callback(m_user, line.level, line.text.c_str()); });
        }
    }

protected:
    void append(const spi::LoggingEventPtr& event, helpers::Pool& pool) override
    {
        const auto level = event->getLevel()->toInt();
        {
            const std::lock_guard lock(m_mutex);
            if (level >= m_fileLevel) {
                LogString text;
                m_layout.format(text, event, pool);
                m_file << utf8(text) << std::flush;
            }
            if (level >= m_callbackLevel) {
                m_lines.push_back({levelOf(level), CInterface::forHost(utf8(event->getRenderedMessage()))});
            }
        }
        if (CInterface::Turn::isMine()) {
            deliver();
        }
    }

private:
    PatternLayout m_layout{LOG4CXX_STR("%d %-5p [%t] %c - %m%n")};
    mutable std::mutex m_mutex;
    vantry_log_callback m_callback = nullptr;
    void* m_user = nullptr;
    int m_callbackLevel = Level::OFF_INT;
    std::vector<Line> m_lines;
    std::ofstream m_file;
    int m_fileLevel = Level::OFF_INT;
};
IMPLEMENT_LOG4CXX_OBJECT(HostAppender)
} // namespace log4cxx

namespace
{
struct Lines
{
    Lines()
    {
        hierarchy->getRootLogger()->addAppender(appender);
        applyLevel();
    }

    void applyLevel() const { hierarchy->getRootLogger()->setLevel(Level::toLevel(appender->lowestLevel())); }

    log4cxx::HierarchyPtr hierarchy = log4cxx::Hierarchy::create();
    std::shared_ptr<log4cxx::HostAppender> appender = std::make_shared<log4cxx::HostAppender>();
};

/// Never destroyed: the end of the process may have killed a thread that held one of its locks.
Lines& lines()
{
    static auto& all = *std::make_unique<Lines>().release();
    return all;
}
} // namespace

log4cxx::LoggerPtr Lumo::loggerOf(const wchar_t* name)
{
    LOG4CXX_DECODE_WCHAR(logName, std::wstring(name));
    return lines().hierarchy->getLogger(logName);
}

namespace CInterface
{
void Log::setCallback(vantry_log_callback callback, void* user, std::int32_t level)
{
    lines().appender->setCallback(callback, user, checked(level));
    lines().applyLevel();
}

bool Log::hasCallback()
{
    return lines().appender->hasCallback();
}

void Log::setFile(const char* path, std::int32_t level)
{
    const auto number = checked(level);
    std::ofstream file;
    if (path != nullptr) {
        file.open(std::filesystem::u8path(path), std::ios::app | std::ios::binary);
        if (!file.is_open()) {
            throw Refusal{VANTRY_NO_LOG_FILE};
        }
    }
    lines().appender->setFile(std::move(file), number);
    lines().applyLevel();
}

void Log::deliver()
{
    lines().appender->deliver();
}
} // namespace CInterface
