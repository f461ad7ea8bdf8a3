/// @file
/// The catalogue of faults: what goes wrong, and what the host then sees. Data only; FaultTest.cpp runs it,
/// Page.cpp prints it.
#pragma once

#include "support/Step.h"

#include "TAVIKVANTRYAPI.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

/// The status of an operation that goes on as if nothing had happened: its own code of success.
constexpr int asUsual = 0;

/// Where a fault strikes.
enum class Stage
{
    Preparation, ///< before anything is sent: neither probe nor request
    Probe,       ///< at the certificate's validation: no request
    Exchange     ///< one request at most
};

enum class Endpoint
{
    Http,
    Https,
    Both
};

/// What leaves an operation instead of a status. With a window it ends the process: run without one.
enum class Leaves
{
    Nothing,
    UriException,
    JsonException,
    ThreadError, ///< with a window alone: the operation's thread cannot be started
    Number       ///< what the host's callback threw
};

/// What the host reads; an empty text stands for any but none.
struct Outcome
{
    int status;
    std::wstring text;
};

/// An answer in the server's own bytes. In them stand {status} for the status line's code and reason phrase
/// of success, {elsewhere} for the sandbox's other port, {password} for the query element.
struct Script
{
    std::vector<Step> steps;
    std::string then = "close";
};

/// The fate of one connection, as the sandbox's control interface names it.
struct Fate
{
    std::string kind; ///< "fault" or "certificate"
    std::string value;
    unsigned skip = 0;
};

/// What a fault of the host itself may touch.
struct Surroundings
{
    std::function<void(std::function<void()>)> onEveryLine; ///< has it called for each line of the log
    std::wstring plainEndPoint;
    std::wstring secureEndPoint;
};

struct Fault
{
    Fault(std::string name, std::string what) : name(std::move(name)), what(std::move(what)) {}

    std::string name;
    std::string what; ///< for people, in Markdown
    Endpoint endpoint = Endpoint::Http;
    Stage stage = Stage::Exchange;
    std::optional<Script> answer;      ///< to the operation's request
    std::optional<Script> probeAnswer; ///< to the certificate probe
    std::vector<Fate> fates;
    std::function<void(const Surroundings&)> host;
    std::function<void()> undo;                          ///< of what `host` did beyond the library's settings
    std::map<std::wstring, std::function<void()>> calls; ///< the operations, if not with their usual records
    std::vector<std::wstring> only;                      ///< the operations; empty: all six
    Outcome outcome{asUsual, L""};
    std::map<std::wstring, int> statusOf; ///< of operations that end otherwise
    std::optional<Outcome> onWindows;
    Leaves leaves = Leaves::Nothing;
    std::optional<std::wstring> ticketId;  ///< that a ticket created as usual gets
    std::optional<std::size_t> tickets;    ///< that a list as usual holds
    int limitMs = 5000;
    bool aboutText = false;       ///< run with logging off, too
    bool silent = false;          ///< lasts as long as the REST SDK waits for a server
    bool costly = false;          ///< each operation in one mode alone
    bool losesMessage = false;    ///< its window is gone before it ends; run with one alone
    bool withoutWindow = false;   ///< run without a window alone
    bool linuxOnly = false;
    bool unsanitized = false;     ///< not to be run under a sanitizer
    bool downloads = false;       ///< memory is watched afterwards

    Fault& over(Endpoint value) { return endpoint = value, *this; }
    Fault& at(Stage value) { return stage = value, *this; }
    Fault& answers(Script value) { return answer = std::move(value), *this; }
    Fault& answersProbe(Script value)
    {
        endpoint = Endpoint::Https;
        probeAnswer = std::move(value);
        return *this;
    }
    Fault& connection(Fate value) { return fates.push_back(std::move(value)), *this; }
    Fault& by(std::function<void(const Surroundings&)> value) { return host = std::move(value), *this; }
    Fault& undoneBy(std::function<void()> value) { return undo = std::move(value), *this; }
    Fault& call(const std::wstring& operation, std::function<void()> start)
    {
        calls[operation] = std::move(start);
        only.push_back(operation);
        return *this;
    }
    Fault& of(std::vector<std::wstring> operations) { return only = std::move(operations), *this; }
    Fault& gives(int status, std::wstring text = L"") { return outcome = {status, std::move(text)}, *this; }
    Fault& butFor(const std::wstring& operation, int status) { return statusOf[operation] = status, *this; }
    Fault& windowsGives(int status, std::wstring text = L"")
    {
        return onWindows = Outcome{status, std::move(text)}, *this;
    }
    Fault& lets(Leaves value) { return leaves = value, *this; }
    Fault& creates(std::wstring id) { return ticketId = std::move(id), *this; }
    Fault& lists(std::size_t count) { return tickets = count, *this; }
    Fault& within(int milliseconds) { return limitMs = milliseconds, *this; }
    Fault& text() { return aboutText = true, *this; }
    Fault& silence() { return silent = true, limitMs = 45'000, *this; }
    Fault& cost() { return costly = true, limitMs = 60'000, *this; }
    Fault& noMessage() { return losesMessage = true, *this; }
    Fault& noWindow() { return withoutWindow = true, *this; }
    Fault& onLinuxAlone() { return linuxOnly = true, *this; }
    Fault& unlessSanitized() { return unsanitized = true, *this; }
    Fault& watched() { return downloads = true, *this; }
};

struct Section
{
    std::string title;
    std::vector<Fault> faults;
};

Section connectionFaults();
Section headFaults();
Section bodyFaults();
Section jsonFaults();
Section redirections();
Section certificateFaults();
Section hostFaults();
Section platformFaults(); ///< what only one platform can do to itself

/// All of them that this platform can run.
const std::vector<Section>& catalogue();

/// The catalogue for people.
std::string page();
