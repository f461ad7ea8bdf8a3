/// @file
/// The catalogue of faults, as faults.json has it.
#pragma once

#include "support/Sandbox.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

/// An answer in steps. In its bytes {status} stands for the code and reason phrase of success, {elsewhere}
/// for an address of the sandbox's other port.
struct Script
{
    std::vector<Step> steps;
    std::string then;
};

/// One row of the file. Its members have the names of these.
struct Fault
{
    explicit Fault(const nlohmann::json& row);

    bool is(const char* flag) const;

    /// Whether it ends, or passes, in what all operations share, so that one of them stands for all.
    bool isShared() const;

    std::size_t number = 0; ///< the row's place in the file
    bool inTurn = false;    ///< the section's: most of its rows are shared
    std::string name;
    std::string over;  ///< http, https or both
    std::string stage; ///< preparation: nothing is sent; probe: no request; connection: none leaves, though
                       ///< your callback has accepted; exchange: one at most
    std::optional<Script> answer;
    std::optional<Script> probe;
    std::optional<nlohmann::json> connection; ///< the sandbox's order, without "secure"
    std::optional<std::wstring> endPoint;
    std::vector<std::wstring> credentials;
    std::string host;                               ///< what the host does, see HostFaults.h
    std::function<void()> ownCall;                  ///< the operation, if with another record than usually
    std::vector<std::wstring> only;                 ///< the operations; empty: all
    std::string leaves;                             ///< the exception; empty: none
    bool isOfWine;                                  ///< Windows itself may give another status
    std::optional<int> gives;                       ///< the status; none: the operation's success
    std::wstring text;                              ///< part of the outcome's text
    std::map<std::wstring, std::optional<int>> but; ///< the status of some operations
    std::optional<std::wstring> ticketId;           ///< of a ticket that is created
    std::optional<std::size_t> tickets;             ///< in a list that comes
    std::vector<std::string> flags;
};

/// The faults that can be tested on this platform.
const std::vector<Fault>& catalogue();
