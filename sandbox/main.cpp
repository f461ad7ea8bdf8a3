#include "ChildProcess.h"
#include "Options.h"
#include "Sandbox.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/steady_timer.hpp>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <functional>
#include <iostream>
#include <string>
#include <system_error>
#include <variant>
#include <vector>

namespace
{

constexpr std::chrono::seconds graceTime{5};

void announce(const sandbox::Sandbox& server)
{
    std::cout << "http " << server.httpEndpoint() << '\n'
              << "https " << server.httpsEndpoint() << '\n'
              << "control " << server.controlEndpoint() << '\n'
              << "ca-file " << server.caFile() << '\n'
              << std::flush;
}

void setVariable(const char* name, const std::string& value)
{
    if (setenv(name, value.c_str(), 1) != 0) {
        throw std::system_error(errno, std::generic_category(), "cannot set the environment");
    }
}

void setEnvironment(const sandbox::Sandbox& server, const sandbox::Options& options)
{
    setVariable("VANTRY_SANDBOX_HTTP", server.httpEndpoint());
    setVariable("VANTRY_SANDBOX_HTTPS", server.httpsEndpoint());
    setVariable("VANTRY_SANDBOX_CONTROL", server.controlEndpoint());
    setVariable("VANTRY_SANDBOX_CA_FILE", server.caFile());
    setVariable("VANTRY_SANDBOX_USER", options.user);
    setVariable("VANTRY_SANDBOX_PASSWORD", options.password);
}

int serve(boost::asio::io_context& context, const sandbox::Sandbox& server)
{
    boost::asio::signal_set stop(context, SIGINT, SIGTERM, SIGHUP);
    stop.async_wait([&context](boost::system::error_code, int) { context.stop(); });
    announce(server);
    context.run();
    return EXIT_SUCCESS;
}

// A signal that would end the sandbox goes to the command instead, whose end then ends the sandbox. A command
// that does not heed it is killed after a while.
int serveCommand(boost::asio::io_context& context, const std::vector<std::string>& command)
{
    boost::asio::signal_set ended(context, SIGCHLD);
    boost::asio::signal_set stop(context, SIGINT, SIGTERM, SIGHUP);
    boost::asio::steady_timer grace(context);
    sandbox::ChildProcess child(command);

    const std::function<void()> awaitEnd = [&] {
        ended.async_wait([&](boost::system::error_code, int) {
            if (child.exitCode()) {
                context.stop();
            } else {
                awaitEnd();
            }
        });
    };
    awaitEnd();
    stop.async_wait([&](boost::system::error_code, int signal) {
        child.signal(signal);
        grace.expires_after(graceTime);
        grace.async_wait([&](boost::system::error_code) { child.signal(SIGKILL); });
    });
    context.run();
    return child.exitCode().value_or(EXIT_FAILURE);
}

int run(const sandbox::Options& options)
{
    std::signal(SIGPIPE, SIG_IGN); // a client that goes away is an error code of the write
    boost::asio::io_context context(1);
    const sandbox::Sandbox server(context, options);
    if (options.command.empty()) {
        return serve(context, server);
    }
    setEnvironment(server, options);
    return serveCommand(context, options.command);
}

} // namespace

int main(int argc, char** argv)
{
    try {
        const auto options = sandbox::readOptions(std::vector<std::string>(argv + 1, argv + argc));
        if (const int* exitCode = std::get_if<int>(&options)) {
            return *exitCode;
        }
        return run(std::get<sandbox::Options>(options));
    } catch (const std::exception& error) {
        std::cerr << "vantry-sandbox: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
