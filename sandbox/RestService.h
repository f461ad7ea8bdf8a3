#pragma once

#include "Plans.h"
#include "Service.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sandbox
{
/// An uploaded file's bytes, which stand in its request.
struct Attachment
{
    std::shared_ptr<const ReceivedRequest> request;
    std::string_view content;
};

/// What the REST ports do and the control interface steers and shows.
struct SharedState
{
    /// The records as they are shown, identifiers in the order of time.
    Json helpDesk = {{"sessions", Json::array()},
                     {"tickets", Json::array()},
                     {"techNotes", Json::array()},
                     {"attachments", Json::array()}};
    std::vector<Attachment> attachments;
    std::vector<std::shared_ptr<const ReceivedRequest>> requests;
    Plans<PlannedAnswer> plannedAnswers;
    Plans<PlannedConnection> plannedConnections;
};

constexpr std::uint64_t firstTicketId = 1001;
constexpr std::uint64_t firstTechNoteId = 2001;
constexpr std::uint64_t firstAttachmentId = 3001;

/// Where the record of that identifier stands among so many.
/// @throws HttpError 404 if there is none
std::size_t positionOf(std::string_view id, std::uint64_t firstId, std::size_t count);

/// Path of the REST resources.
constexpr const char* restBase = "/helpdesk/rest";

class RestService final : public Service
{
public:
    RestService(SharedState& state, std::string user, std::string password);

    std::optional<PlannedConnection> accepted(bool secure) override;
    void received(const std::shared_ptr<const ReceivedRequest>& request) override;
    Reply reply(const Request& request) override;

private:
    void checkCredentials(const Request& request) const;
    Answer openSession(const Request& request);
    Answer closeSession(const Request& request);
    Answer createTicket(const Request& request);
    Answer listTickets(const Request& request) const;
    Answer createTechNote(const Request& request);
    Answer uploadAttachment(const Request& request);

    SharedState& m_state;
    std::string m_user;
    std::string m_password;
};
} // namespace sandbox
