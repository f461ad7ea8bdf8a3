#pragma once

#include "HelpDesk.h"
#include "Plans.h"
#include "RequestLog.h"
#include "Router.h"
#include "Service.h"

#include <optional>
#include <string>
#include <vector>

namespace sandbox
{

struct Account
{
    std::string user;
    std::string password;
};

// What the REST ports do and the control interface steers and shows.
struct SharedState
{
    HelpDesk helpDesk;
    RequestLog requests;
    PlannedAnswers plannedAnswers;
    PlannedConnections plannedConnections;
};

class RestService final : public Service
{
public:
    RestService(SharedState& state, Account account, const std::string& base);

    std::optional<PlannedConnection> accepted(bool secure) override;
    void received(ReceivedRequest request) override;
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
    Account m_account;
    std::vector<Route> m_routes;
};

} // namespace sandbox
