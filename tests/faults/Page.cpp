// The catalogue as a page for people, and the program's main function, which prints it.
#include "faults/Fault.h"

#include "platform/PlatformSupport.h"
#include "support/Text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <sstream>
#include <string_view>

namespace
{
std::string seen(const Outcome& outcome)
{
    if (outcome.status == asUsual && outcome.text.empty()) {
        return "nothing";
    }
    const auto code = outcome.status == asUsual ? "as usual" : std::to_string(outcome.status);
    return outcome.text.empty() ? code : code + " \xe2\x80\x9c" + narrow(outcome.text) + "\xe2\x80\x9d";
}

std::string seen(const Fault& fault)
{
    switch (fault.leaves) {
    case Leaves::Nothing:
        break;
    case Leaves::UriException:
        return "`web::uri_exception`";
    case Leaves::JsonException:
        return "`web::json::json_exception`";
    case Leaves::ThreadError:
        return "`std::system_error`";
    case Leaves::Number:
        return "what was thrown";
    }
    auto text = seen(fault.outcome);
    for (const auto& [operation, status] : fault.statusOf) {
        text += "; `" + narrow(operation) + "`: " + seen(Outcome{status, L""});
    }
    return fault.onWindows ? text + "; on Windows: " + seen(*fault.onWindows) : text;
}

std::string concerned(const Fault& fault)
{
    std::string names;
    for (const auto& operation : fault.only) {
        names += (names.empty() ? "" : ", ") + ("`" + narrow(operation) + "`");
    }
    return names.empty() ? "all" : names;
}
} // namespace

const std::vector<Section>& catalogue()
{
    static const auto sections = [] {
        std::vector<Section> all;
        for (auto* const make : {&connectionFaults, &headFaults, &bodyFaults, &jsonFaults, &redirections,
                                 &certificateFaults, &hostFaults, &platformFaults}) {
            all.push_back(make());
        }
        return all;
    }();
    return sections;
}

std::string page()
{
    std::ostringstream out;
    out << "# What your program sees when something goes wrong\n"
           "\n"
           "Made from the table that the tests run: `vantry-fault-tests --markdown > docs/faults.md`.\n"
           "\n"
           "Each fault below meets each operation named, with a window and without, and in each case: the operation\n"
           "ends in time; with a window exactly one message comes, without one none; no exception leaves it but those\n"
           "named here; no ticket id or list of an earlier call is left to read after a failure; the next call works;\n"
           "the password is in no line of the log. \"Nothing\" means that the operation succeeds, or that the host\n"
           "cannot tell.\n";
    for (const auto& section : catalogue()) {
        out << "\n## " << section.title << "\n\n| fault | operations | what `GetLastResponse` gives |\n|---|---|---|\n";
        for (const auto& fault : section.faults) {
            out << "| " << fault.what << (fault.endpoint == Endpoint::Https ? " (https)" : "") << " | "
                << concerned(fault) << " | " << seen(fault) << " |\n";
        }
    }
    return out.str();
}

int main(int argc, char** argv)
{
    if (argc == 2 && argv[1] == std::string_view("--markdown")) {
        std::cout << page();
        return 0;
    }
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
