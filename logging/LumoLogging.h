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
/// Hands a finished line to the logger: with the password masked and what log4cxx cannot take replaced.
/// @throws whatever an appender throws: to be called through `LUMO_LINE` alone
void write(const log4cxx::LoggerPtr& logger, const log4cxx::LevelPtr& level, const std::wstring& line,
           const log4cxx::spi::LocationInfo& location);
void write(const log4cxx::LoggerPtr& logger, const log4cxx::LevelPtr& level, const std::string& line,
           const log4cxx::spi::LocationInfo& location);

/// Sets the password, percent-encoded as it stands in a query, that no line shows from now on; empty: none.
/// Not to be called while another thread writes.
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

/// Names the function whose lines the following macros write, and their logger.
#define LUMO_LINES_OF(logger, name)                                                                          \
    const log4cxx::LoggerPtr& lumoLogger = (logger);                                                         \
    const wchar_t* const lumoName = (name)

/// Opens a function: its scope log, and the name and logger of its lines. `name` is a narrow literal.
#define LUMO_FUNCTION(logger, name)                                                                          \
    LUMO_LINES_OF(logger, L"" name);                                                                         \
    const LumoLogBlock lumoBlock(lumoLogger, name)

/// Lines of the function named above: its name, "; " and the message, an insertion chain of wide text and
/// numbers.
#define LUMO_TRACE(message) LUMO_LINE(lumoLogger, Trace, lumoName << L"; " << message)
#define LUMO_DEBUG(message) LUMO_LINE(lumoLogger, Debug, lumoName << L"; " << message)
#define LUMO_INFO(message) LUMO_LINE(lumoLogger, Info, lumoName << L"; " << message)
#define LUMO_ERROR(message) LUMO_LINE(lumoLogger, Error, lumoName << L"; " << message)
#define LUMO_FATAL(message) LUMO_LINE(lumoLogger, Fatal, lumoName << L"; " << message)
// NOLINTEND(bugprone-macro-parentheses)
