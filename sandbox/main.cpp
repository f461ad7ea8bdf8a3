#include "CaFile.h"
#include "Certificates.h"
#include "ControlService.h"
#include "Listener.h"
#include "Options.h"
#include "Platform.h"
#include "RestService.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/process/environment.hpp>

#include <chrono>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <random>
#include <string>
#include <variant>

namespace
{
using namespace sandbox;

constexpr std::chrono::milliseconds lookTime{5};
constexpr std::chrono::seconds graceTime{5};

/// The three ports and what stands behind them. Everything runs on the one thread that runs the context.
struct Server
{
    Server(boost::asio::io_context& context, const Options& options)
        : control(context), http(context), https(context),
          // Never the same list twice: a client may keep one by its address, and ports come round again.
          authority(control.address("http") + "/crl.der?" + std::to_string(std::random_device()())),
          caFile(authority.pem(), std::filesystem::u8path(options.caFile)),
          restService(state, options.user, options.password), controlService(controlRoutes(state, authority))
    {
        control.start(controlService);
        http.start(restService);
        https.start(restService, &authority);
    }

    Listener control;
    Listener http;
    Listener https;
    CertificateAuthority authority;
    CaFile caFile;
    SharedState state;
    RestService restService;
    Service controlService;
};

void announce(const Server& server)
{
    std::cout << "http " << server.http.address("http") << restBase << '\n'
              << "https " << server.https.address("https") << restBase << '\n'
              << "control " << server.control.address("http") << '\n'
              << "ca-file " << server.caFile.path().u8string() << '\n'
              << std::flush;
}

void setVariable(const std::string& name, const std::string& value)
{
    using Character = std::filesystem::path::value_type; // the environment's own
    boost::process::basic_native_environment<Character> environment;
    environment[std::filesystem::u8path("VANTRY_SANDBOX_" + name).native()] =
        std::filesystem::u8path(value).native();
}

void setEnvironment(const Server& server, const Options& options)
{
    setVariable("HTTP", server.http.address("http") + restBase);
    setVariable("HTTPS", server.https.address("https") + restBase);
    setVariable("CONTROL", server.control.address("http"));
    setVariable("CA_FILE", server.caFile.path().u8string());
    setVariable("USER", options.user);
    setVariable("PASSWORD", options.password);
}

/// Looks again and again whether the command has ended, and then ends the context's run.
void awaitEnd(boost::process::child& command, boost::asio::steady_timer& timer,
              boost::asio::io_context& context)
{
    if (!command.running()) {
        context.stop();
        return;
    }
    timer.expires_after(lookTime);
    timer.async_wait([&](boost::system::error_code) { awaitEnd(command, timer, context); });
}

/// A signal that would end the sandbox goes to the command instead, whose end then ends the sandbox. A
/// command that does not heed it is killed after a while.
int serveCommand(boost::asio::io_context& context, const std::vector<std::string>& words)
{
    boost::asio::signal_set stop(context);
    platform::addStopSignals(stop);
    boost::asio::steady_timer timer(context);
    boost::asio::steady_timer grace(context);
    boost::process::child command = platform::start(words);
    awaitEnd(command, timer, context);
    stop.async_wait([&](boost::system::error_code, int signal) {
        platform::signal(command, signal);
        grace.expires_after(graceTime);
        grace.async_wait([&](boost::system::error_code) { command.terminate(); });
    });
    context.run();
    return platform::exitCode(command);
}

int serve(boost::asio::io_context& context)
{
    boost::asio::signal_set stop(context);
    platform::addStopSignals(stop);
    stop.async_wait([&context](boost::system::error_code, int) { context.stop(); });
    context.run();
    return EXIT_SUCCESS;
}

int run(const Options& options)
{
    boost::asio::io_context context(1);
    const Server server(context, options);
    if (options.command.empty()) {
        announce(server);
        return serve(context);
    }
    setEnvironment(server, options);
    return serveCommand(context, options.command);
}
} // namespace

int main(int argc, char** argv)
{
    try {
        const auto options = readOptions(platform::arguments(argc, argv));
        const int* exitCode = std::get_if<int>(&options);
        return exitCode != nullptr ? *exitCode : run(std::get<Options>(options));
    } catch (const std::exception& error) {
        std::cerr << "vantry-sandbox: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
