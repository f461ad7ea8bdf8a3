/// @file
/// What differs between the systems that the sandbox runs on. All text is UTF-8.
#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/process/child.hpp>

#include <string>
#include <vector>

namespace sandbox::platform
{
/// The arguments of this process, without its name.
std::vector<std::string> arguments(int argc, char** argv);

/// Adds what asks a program to end: signals, or the console that is closed.
void addStopSignals(boost::asio::signal_set& signals);

/// Starts a command, which inherits the standard streams alone: no port stays open by it. It is killed when
/// the object goes, or when this process ends in any way. Its end stops the context.
/// @throws boost::process::process_error if that fails
boost::process::child start(boost::asio::io_context& context, const std::vector<std::string>& command);

/// Passes on a signal that this process got. On Windows the console has told the command already.
void signal(const boost::process::child& command, int number);

/// The exit code of a command that has ended; on Linux 128 + n when signal n ended it.
int exitCode(const boost::process::child& command);
} // namespace sandbox::platform
