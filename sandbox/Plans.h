/// @file
/// What the control interface has ordered for requests and connections to come.
#pragma once

#include "Certificates.h"
#include "Http.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <vector>

namespace sandbox
{
/// What a connection does after the last byte of a reply.
enum class Afterwards
{
    KeepAlive,
    Close, ///< in good order: a secure connection says goodbye first
    Drop,  ///< closes the socket the way a broken server does
    Reset, ///< the client sees a connection reset
    Stay   ///< open and silent until the client goes
};

struct Step
{
    std::string bytes;
    std::chrono::milliseconds wait{0}; ///< before each time
    std::uint64_t times = 1;           ///< 0: without end, until the client goes
};

struct Reply
{
    std::vector<Step> steps;
    Afterwards afterwards = Afterwards::KeepAlive;
};

/// An answer for one request to come.
struct PlannedAnswer
{
    std::optional<std::string> method;
    std::optional<std::string> path;
    std::chrono::milliseconds delay{0};
    std::optional<Reply> script; ///< replaces the answer as a whole
    Answer answer;
    std::optional<std::size_t> closeAfter;
};

/// What happens instead of the TLS handshake and the requests of a connection.
struct Misbehaviour
{
    bool awaitsClient; ///< begins when the client has sent its first bytes
    Reply reply;
};

/// The fate of one connection to come: a misbehaviour or a certificate of its own.
struct PlannedConnection
{
    std::optional<bool> secure;
    std::uint64_t skip = 0; ///< so many that fit are let through first
    std::optional<Misbehaviour> misbehaviour;
    CertificateKind certificate = CertificateKind::Good;
};

/// @throws HttpError 400 for an order that is malformed
PlannedAnswer readPlannedAnswer(const Json& order);
PlannedConnection readPlannedConnection(const Json& order);

class PlannedAnswers
{
public:
    void add(PlannedAnswer answer) { m_answers.push_back(std::move(answer)); }
    void clear() { m_answers.clear(); }

    /// The oldest answer that fits the request; it is used up by this.
    std::optional<PlannedAnswer> take(const Request& request);

private:
    std::deque<PlannedAnswer> m_answers;
};

class PlannedConnections
{
public:
    void add(PlannedConnection connection) { m_connections.push_back(std::move(connection)); }
    void clear() { m_connections.clear(); }

    /// The oldest fate that fits, used up by this; nothing when that one lets the connection through.
    std::optional<PlannedConnection> take(bool secure);

private:
    std::deque<PlannedConnection> m_connections;
};
} // namespace sandbox
