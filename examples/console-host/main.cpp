/// @file
/// A host of the library without a window of its own: shows every operation, one after the other or in the
/// background, and how a host deals with the server's certificate and with failures.
#include "HelpDeskJob.h"
#include "Log.h"
#include "Options.h"
#include "Terminal.h"

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <stdexcept>

namespace
{
std::string findPassword()
{
    if (auto password = environmentVariable("VANTRY_PASSWORD")) {
        return *password;
    }
    if (auto password = askSecretly("Password:")) {
        return *password;
    }
    throw std::runtime_error("no password: give --password or VANTRY_PASSWORD, or answer the question");
}

int runProgram(std::vector<std::string> arguments)
{
    CLI::App app("Creates a help-desk ticket with a note and a file, and lists the tickets.",
                 "vantry-console-host");
    Options options;
    declareOptions(app, options);
    try {
        std::reverse(arguments.begin(), arguments.end()); // the order that CLI11 reads
        app.parse(arguments);
    } catch (const CLI::ParseError& error) {
        return app.exit(error);
    }
    if (app.count("--password") == 0) {
        options.password = findPassword();
    }
    configureLog(options);
    return doHelpDeskJob(options) ? EXIT_SUCCESS : EXIT_FAILURE;
}
} // namespace

int main(int argc, char** argv)
{
    try {
        prepareTerminal();
        return runProgram(commandLineArguments(argc, argv));
    } catch (const std::exception& error) {
        std::cerr << "vantry-console-host: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
