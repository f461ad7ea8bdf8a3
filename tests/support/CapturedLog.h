/// @file
/// What the library logged.
#pragma once

#include <log4cxx/logger.h>

#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace log4cxx
{
class CapturingAppender;
}

struct LogLine
{
    std::wstring text; ///< "LEVEL logger message"
    std::string file;  ///< source location
    int line;
    std::thread::id thread;
};

/// Captures the library's two loggers, at trace level to begin with.
class CapturedLog
{
public:
    CapturedLog();
    ~CapturedLog();
    CapturedLog(const CapturedLog&) = delete;
    CapturedLog& operator=(const CapturedLog&) = delete;

    static void setLevel(const log4cxx::LevelPtr& level);

    /// Calls `action` on the logging thread, with the lines before it captured, whenever a message ends with
    /// `end`. The action must not log, nor wait for a thread that does.
    void onLine(const std::wstring& end, std::function<void()> action);
    void forgetActions();

    void clear();
    std::vector<LogLine> lines() const;

    enum class Threads
    {
        all,
        caller,
        others
    };

    /// The texts of `lines`, of all threads, of the calling one or of the others. "Going to run task..." is
    /// logged while the answer is already on its way: what other threads logged before it is moved behind it.
    std::vector<std::wstring> texts(Threads wanted = Threads::all) const;

    /// The texts that contain `part`.
    std::vector<std::wstring> containing(const std::wstring& part) const;

    /// Waits up to ten seconds for a line that ends with `end`.
    bool waitFor(const std::wstring& end) const;

private:
    std::shared_ptr<log4cxx::CapturingAppender> m_appender;
};
