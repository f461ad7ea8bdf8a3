#include "Certificates.h"
#include "Listener.h"
#include "Options.h"
#include "Platform.h"
#include "Routes.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/process/environment.hpp>
#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/uuid_io.hpp>

#include <chrono>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <random>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>
#include <variant>
#include <vector>

namespace
{
using namespace sandbox;

constexpr std::chrono::seconds graceTime{5};

/// The certificate authority as a file for clients, which goes with this object.
class CaFile
{
public:
    explicit CaFile(const std::string& pem)
        : m_path(std::filesystem::temp_directory_path() /
                 ("vantry-sandbox-" + to_string(boost::uuids::random_generator()()) + ".pem"))
    {
        if (!(std::ofstream(m_path, std::ios::binary) << pem << std::flush)) {
            throw std::runtime_error("cannot write " + m_path.u8string());
        }
    }

    ~CaFile()
    {
        std::error_code leftBehind; // a file that cannot be removed is no reason to fail at exit
        std::filesystem::remove(m_path, leftBehind);
    }

    CaFile(const CaFile&) = delete;
    CaFile& operator=(const CaFile&) = delete;
    CaFile(CaFile&&) = delete;
    CaFile& operator=(CaFile&&) = delete;

    const std::filesystem::path& path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

/// The three ports and what stands behind them. Everything runs on the one thread that runs the context.
struct Server
{
    Server(boost::asio::io_context& context, const Options& options)
        : control(context), http(context), https(context),
          // Another address in each run: a client may cache the list, and the system gives ports out again.
          authority(control.address("http") + "/crl.der?" + std::to_string(std::random_device()())),
          caFile(authority.pem()), restService(restRoutes(state, options.user, options.password), &state),
          controlService(controlRoutes(state, authority))
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
    Service restService;
    Service controlService;
};

std::vector<std::pair<std::string, std::string>> variables(const Server& server, const Options& options)
{
    return {{"VANTRY_SANDBOX_HTTP", server.http.address("http") + restBase},
            {"VANTRY_SANDBOX_HTTPS", server.https.address("https") + restBase},
            {"VANTRY_SANDBOX_CONTROL", server.control.address("http")},
            {"VANTRY_SANDBOX_CA_FILE", server.caFile.path().u8string()},
            {"VANTRY_SANDBOX_USER", options.user},
            {"VANTRY_SANDBOX_PASSWORD", options.password}};
}

void setVariable(const std::string& name, const std::string& value)
{
    using Character = std::filesystem::path::value_type; // the environment's own
    boost::process::basic_native_environment<Character> environment;
    environment[std::filesystem::u8path(name).native()] = std::filesystem::u8path(value).native();
}

/// A signal that would end the sandbox goes to the command instead, whose end then ends the sandbox. A
/// command that does not heed it is killed after a while.
int serveCommand(boost::asio::io_context& context, boost::asio::signal_set& stop,
                 const std::vector<std::string>& words)
{
    boost::asio::steady_timer grace(context);
    boost::process::child command = platform::start(context, words);
    stop.async_wait([&](boost::system::error_code, int signal) {
        platform::signal(command, signal);
        grace.expires_after(graceTime);
        grace.async_wait([&](boost::system::error_code) { command.terminate(); });
    });
    context.run();
    command.wait();
    return platform::exitCode(command);
}

int serve(boost::asio::io_context& context, boost::asio::signal_set& stop)
{
    stop.async_wait([&context](boost::system::error_code, int) { context.stop(); });
    context.run();
    return EXIT_SUCCESS;
}

int run(const Options& options)
{
    boost::asio::io_context context(1);
    const Server server(context, options);
    boost::asio::signal_set stop(context);
    platform::addStopSignals(stop);
    for (const auto& [name, value] : variables(server, options)) {
        if (options.command.empty()) {
            std::cout << name << '=' << value << std::endl;
        } else {
            setVariable(name, value);
        }
    }
    return options.command.empty() ? serve(context, stop) : serveCommand(context, stop, options.command);
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
