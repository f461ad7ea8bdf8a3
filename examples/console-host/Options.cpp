#include "Options.h"

#include <map>

namespace
{
/// `RequestTicketList` puts the id into an address as it is.
std::string checkId(const std::string& id)
{
    const auto unreserved = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~";
    return id.empty() || id.find_first_not_of(unreserved) != std::string::npos
               ? "must consist of letters, digits and -._~"
               : "";
}

const std::map<std::string, CertificateAnswer> answers{{"ask", CertificateAnswer::ask},
                                                       {"accept", CertificateAnswer::accept},
                                                       {"refuse", CertificateAnswer::refuse}};
} // namespace

void declareOptions(CLI::App& app, Options& options)
{
    app.add_option("--endpoint", options.endPoint,
                   "REST endpoint, as in https://desk.example.com/helpdesk/rest")
        ->required();
    app.add_option("--user", options.userName, "User name")->required();
    app.add_option(
        "--password", options.password,
        "Password; others can see it on the command line, so rather set VANTRY_PASSWORD or be asked");

    auto* entity = app.add_option_group("Entity", "What the ticket is for");
    entity->add_option("--client", options.client, "Id of a client")->check(checkId, "ID");
    entity->add_option("--asset", options.asset, "Id of an asset")->check(checkId, "ID");
    entity->require_option(1);

    app.add_option("--subject", options.subject, "Subject of the ticket")->capture_default_str();
    app.add_option("--detail", options.detail, "Text of the ticket")->capture_default_str();
    app.add_option("--note", options.note, "Text of the tech note")->capture_default_str();
    app.add_option("--work-time", options.workTime, "Work time booked with the note")->capture_default_str();
    app.add_flag("--hidden", options.isNoteHidden, "Hide the note");
    app.add_option("--file", options.file, "File to attach to the note; without it, a built-in sample");

    app.add_flag("--async", options.isAsynchronous, "Work with a window: operations run in the background");
    app.add_option("--certificate", options.certificate,
                   "Answer to the question about the server's certificate")
        ->transform(CLI::Transformer(answers).description(""))
        ->type_name("ask|accept|refuse")
        ->default_str("ask");

    auto* logFile = app.add_option("--log", options.logFile, "Append the library's log to this file");
    app.add_option("--log-level", options.logLevel, "Level of the log")
        ->capture_default_str()
        ->check(CLI::IsMember({"trace", "debug", "info", "warn", "error", "fatal"}))
        ->needs(logFile);
    app.add_option("--log-config", options.logConfiguration,
                   "log4cxx configuration: properties, or XML as *.xml")
        ->excludes(logFile);
}
