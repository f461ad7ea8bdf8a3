#include "Log.h"

#include "Text.h"
#include "Turn.h"

#include <log4cxx/appenderskeleton.h>
#include <log4cxx/helpers/transcoder.h>
#include <log4cxx/hierarchy.h>
#include <log4cxx/patternlayout.h>
#include <log4cxx/spi/loggingevent.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace
{
constexpr std::int32_t nothing = VANTRY_LOG_FATAL + 1; ///< a level above all lines

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

/// Levels of log4cxx are multiples of 10,000, but for the lowest.
std::int32_t levelOf(const log4cxx::LevelPtr& level)
{
    constexpr int step = 10'000;
    return std::clamp<std::int32_t>(level->toInt() / step, VANTRY_LOG_TRACE, VANTRY_LOG_FATAL);
}

log4cxx::LevelPtr toLevel(std::int32_t level)
{
    using log4cxx::Level;
    const log4cxx::LevelPtr levels[] = {Level::getTrace(), Level::getDebug(), Level::getInfo(),
                                        Level::getWarn(),  Level::getError(), Level::getFatal(),
                                        Level::getOff()};
    return levels[level];
}

void requireLevel(std::int32_t level)
{
    if (level < VANTRY_LOG_TRACE || level > VANTRY_LOG_FATAL) {
        throw CInterface::Refusal{VANTRY_INVALID_ARGUMENT};
    }
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

    void setCallback(vantry_log_callback callback, void* user, std::int32_t level)
    {
        const std::lock_guard lock(m_mutex);
        m_callback = callback;
        m_user = user;
        m_callbackLevel = callback == nullptr ? nothing : level;
        m_lines.clear();
    }

    void setFile(std::ofstream file, std::int32_t level)
    {
        const std::lock_guard lock(m_mutex);
        m_fileLevel = file.is_open() ? level : nothing;
        m_file = std::move(file);
    }

    bool hasCallback() const { return m_callback != nullptr; }
    std::int32_t lowestLevel() const { return std::min(m_callbackLevel, m_fileLevel); }

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
        const auto level = levelOf(event->getLevel());
        {
            const std::lock_guard lock(m_mutex);
            if (level >= m_fileLevel) {
                LogString text;
                m_layout.format(text, event, pool);
                m_file << utf8(text) << std::flush;
            }
            if (level >= m_callbackLevel) {
                m_lines.push_back({level, CInterface::forHost(utf8(event->getRenderedMessage()))});
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
    std::int32_t m_callbackLevel = nothing;
    std::vector<Line> m_lines;
    std::ofstream m_file;
    std::int32_t m_fileLevel = nothing;
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

    void applyLevel() const { hierarchy->getRootLogger()->setLevel(toLevel(appender->lowestLevel())); }

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

namespace CInterface
{
log4cxx::LoggerPtr Log::logger(const std::wstring& name)
{
    LOG4CXX_DECODE_WCHAR(logName, name);
    return lines().hierarchy->getLogger(logName);
}

void Log::setCallback(vantry_log_callback callback, void* user, std::int32_t level)
{
    requireLevel(level);
    lines().appender->setCallback(callback, user, level);
    lines().applyLevel();
}

bool Log::hasCallback()
{
    return lines().appender->hasCallback();
}

void Log::setFile(const char* path, std::int32_t level)
{
    requireLevel(level);
    std::ofstream file;
    if (path != nullptr) {
        file.open(std::filesystem::u8path(path), std::ios::app | std::ios::binary);
        if (!file.is_open()) {
            throw Refusal{VANTRY_NO_LOG_FILE};
        }
    }
    lines().appender->setFile(std::move(file), level);
    lines().applyLevel();
}

void Log::deliver()
{
    lines().appender->deliver();
}
} // namespace CInterface
