/// @file
/// The one way in which the library writes a log line.
///
/// Writing cannot fail: what an appender throws, or the forming of a line for want of memory, ends here, and
/// the rest of the call goes on as if the line had been written. No line shows the password of the
/// credentials.
#pragma once

#include "AnsiText.h"

#include <log4cxx/logger.h>

#include <new>
#include <string>

namespace Lumo
{
/// The logger of this name. Each module says where its own come from: this one function is defined with its
/// interface, not here.
log4cxx::LoggerPtr loggerOf(const wchar_t* name);

/// Hands a finished line to the logger: with the password masked and what log4cxx cannot take replaced.
/// @throws whatever an appender throws: to be called through `LUMO_LINE` alone
void write(const log4cxx::LoggerPtr& logger, const log4cxx::LevelPtr& level, const std::wstring& line,
           const log4cxx::spi::LocationInfo& location);
void write(const log4cxx::LoggerPtr& logger, const log4cxx::LevelPtr& level, const std::string& line,
           const log4cxx::spi::LocationInfo& location);

/// Sets the password, percent-encoded as it stands in a query, that no line shows from now on, nor the one
/// before it; empty: nothing is added. May be called while other threads write.
void hidePassword(const std::wstring& encodedPassword);

/// `text` with each query element that holds the hidden password masked.
std::wstring withoutPassword(std::wstring text);
} // namespace Lumo

/// Writes `message`, an insertion chain of either wide text or narrow text and numbers, if the logger's level
/// (Trace, Debug, Info, Warn, Error, Fatal) is on; if it is off, nothing of the chain is evaluated. Nothing
/// in the chain may log: all buffers of a thread share one stream.
// NOLINTBEGIN(bugprone-macro-parentheses): an insertion chain cannot stand in parentheses
#define LUMO_LINE(logger, level, message)                                                                    \
    do {                                                                                                     \
        if (::log4cxx::Logger::is##level##EnabledFor(logger)) {                                              \
            try {                                                                                            \
                ::log4cxx::helpers::MessageBuffer lumoBuffer;                                                \
                ::Lumo::write(logger, ::log4cxx::Level::get##level(), lumoBuffer.str(lumoBuffer << message), \
                              LOG4CXX_LOCATION);                                                             \
            } catch (...) {                                                                                  \
                /* a log that fails changes nothing else */                                                  \
            }                                                                                                \
        }                                                                                                    \
    } while (false)

/// Traces entering and leaving a scope: create one as a local at the top of a function.
///
/// The logger pointer is referred to, not copied, and must outlive the block. The level is tested again at
/// the end, not remembered: a block built with trace off and ended with trace on leaves under an empty name.
class LumoLogBlock
{
public:
    LumoLogBlock(const log4cxx::LoggerPtr& logger, const char* name) noexcept : m_logger(logger)
    {
        if (log4cxx::Logger::isTraceEnabledFor(m_logger)) {
            enter([name] { return Platform::fromAnsi(name); });
        }
    }

    LumoLogBlock(const log4cxx::LoggerPtr& logger, const wchar_t* name) noexcept : m_logger(logger)
    {
        if (log4cxx::Logger::isTraceEnabledFor(m_logger)) {
            enter([name] { return name; });
        }
    }

    ~LumoLogBlock() { LUMO_LINE(m_logger, Trace, m_name << L" exiting."); }

    LumoLogBlock(const LumoLogBlock&) = delete;
    LumoLogBlock(LumoLogBlock&&) = delete;
    LumoLogBlock& operator=(const LumoLogBlock&) = delete;
    LumoLogBlock& operator=(LumoLogBlock&&) = delete;

private:
    template <typename Name>
    void enter(const Name& name) noexcept
    {
        try {
            m_name = name();
        } catch (const std::bad_alloc&) {
            return; // the scope goes on without its line
        }
        LUMO_LINE(m_logger, Trace, m_name << L" entering.");
    }

    std::wstring m_name;
    const log4cxx::LoggerPtr& m_logger;
};

/// A function as the log knows it: its scope log, and the name and logger of the lines that it and its
/// helpers write. Create one as a local at the top of a function.
class LumoFunction
{
public:
    /// `logger` and `name`, a literal of ASCII, are referred to.
    LumoFunction(const log4cxx::LoggerPtr& logger, const char* name) noexcept
        : m_name(name), m_logger(logger), m_block(logger, name)
    {}

    const char* name() const { return m_name; }
    const log4cxx::LoggerPtr& logger() const { return m_logger; }

private:
    const char* m_name;
    const log4cxx::LoggerPtr& m_logger;
    LumoLogBlock m_block;
};

/// Lines of `function`, a `LumoFunction`: its name, "; " and the message, an insertion chain of wide text and
/// numbers.
#define LUMO_FUNCTION_LINE(function, level, message)                                                         \
    LUMO_LINE((function).logger(), level, L"" << (function).name() << L"; " << message)
#define LUMO_TRACE(function, message) LUMO_FUNCTION_LINE(function, Trace, message)
#define LUMO_DEBUG(function, message) LUMO_FUNCTION_LINE(function, Debug, message)
#define LUMO_INFO(function, message) LUMO_FUNCTION_LINE(function, Info, message)
#define LUMO_ERROR(function, message) LUMO_FUNCTION_LINE(function, Error, message)
#define LUMO_FATAL(function, message) LUMO_FUNCTION_LINE(function, Fatal, message)
// NOLINTEND(bugprone-macro-parentheses)
