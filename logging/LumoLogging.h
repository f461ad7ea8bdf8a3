/// @file
/// The one way in which the library writes a log line.
#pragma once

#include "AnsiText.h"

#include <log4cxx/logger.h>

#include <string>

/// Traces entering and leaving a scope: create one as a local at the top of a function.
///
/// The logger pointer is referred to, not copied, and must outlive the block. The level is tested again at
/// the end, not remembered: a block built with trace off and ended with trace on leaves under an empty name.
class LumoLogBlock
{
public:
    LumoLogBlock(const log4cxx::LoggerPtr& logger, const char* name) : m_logger(logger)
    {
        if (log4cxx::Logger::isTraceEnabledFor(m_logger)) {
            m_name = Platform::fromAnsi(name);
            LOG4CXX_TRACE(m_logger, m_name << L" entering.");
        }
    }

    LumoLogBlock(const log4cxx::LoggerPtr& logger, const wchar_t* name) : m_logger(logger)
    {
        if (log4cxx::Logger::isTraceEnabledFor(m_logger)) {
            m_name = name;
            LOG4CXX_TRACE(m_logger, m_name << L" entering.");
        }
    }

    ~LumoLogBlock() { LOG4CXX_TRACE(m_logger, m_name << L" exiting."); }

    LumoLogBlock(const LumoLogBlock&) = delete;
    LumoLogBlock(LumoLogBlock&&) = delete;
    LumoLogBlock& operator=(const LumoLogBlock&) = delete;
    LumoLogBlock& operator=(LumoLogBlock&&) = delete;

private:
    std::wstring m_name;
    const log4cxx::LoggerPtr& m_logger;
};

/// Opens a function: its scope log, and the name and logger of its lines. `name` is a narrow literal.
#define LUMO_FUNCTION(logger, name)                                                                          \
    const log4cxx::LoggerPtr& lumoLogger = (logger);                                                         \
    constexpr const wchar_t* lumoName = L"" name;                                                            \
    const LumoLogBlock lumoBlock(lumoLogger, name)

/// Lines of a function that `LUMO_FUNCTION` opened: its name, "; " and the message. The log4cxx macro tests
/// the level before anything of `message`, an insertion chain of wide text and numbers, is evaluated. Nothing
/// in the chain may log: all buffers of a thread share one stream.
// NOLINTBEGIN(bugprone-macro-parentheses): an insertion chain cannot stand in parentheses
#define LUMO_TRACE(message) LOG4CXX_TRACE(lumoLogger, lumoName << L"; " << message)
#define LUMO_DEBUG(message) LOG4CXX_DEBUG(lumoLogger, lumoName << L"; " << message)
#define LUMO_INFO(message) LOG4CXX_INFO(lumoLogger, lumoName << L"; " << message)
#define LUMO_ERROR(message) LOG4CXX_ERROR(lumoLogger, lumoName << L"; " << message)
#define LUMO_FATAL(message) LOG4CXX_FATAL(lumoLogger, lumoName << L"; " << message)
// NOLINTEND(bugprone-macro-parentheses)
