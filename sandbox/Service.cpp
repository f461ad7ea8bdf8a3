#include "Service.h"

#include "Parsing.h"

#include <utility>

namespace sandbox
{
namespace
{
bool leadsTo(const Route& route, std::string_view path)
{
    const std::string_view own = route.path;
    return own.back() == '*' ? path.substr(0, own.size() - 1) == own.substr(0, own.size() - 1) : path == own;
}

Answer answerBy(const Route& route, const Request& request)
{
    try {
        return route.handle(request);
    } catch (const HttpError& error) {
        return errorAnswer(error.status, error.what(), route.errorMember);
    } catch (const Json::exception& error) {
        return errorAnswer(400, error.what(), route.errorMember);
    }
}

Answer answerByRoute(const std::vector<Route>& routes, const Request& request)
{
    bool isPathKnown = false;
    for (const Route& route : routes) {
        if (leadsTo(route, pathOf(view(request.target())))) {
            if (route.method == request.method()) {
                return answerBy(route, request);
            }
            isPathKnown = true;
        }
    }
    return isPathKnown ? errorAnswer(405, "this method is not allowed here")
                       : errorAnswer(404, "there is nothing at this path");
}

Reply plannedReply(const PlannedAnswer& planned, const Request& request)
{
    Reply reply = planned.script ? *planned.script : replyTo(request, planned.answer);
    reply.steps.insert(reply.steps.begin(), planned.before);
    return reply;
}
} // namespace

Service::Service(std::vector<Route> routes, SharedState* state) : m_routes(std::move(routes)), m_state(state)
{}

std::optional<PlannedConnection> Service::accepted(bool secure)
{
    if (m_state == nullptr) {
        return std::nullopt;
    }
    return m_state->plannedConnections.take(
        [secure](const PlannedConnection& planned) { return planned.secure.value_or(secure) == secure; });
}

Reply Service::serve(ReceivedRequest received)
{
    const Request& request = received.request;
    std::optional<PlannedAnswer> planned;
    if (m_state != nullptr) {
        planned = m_state->plannedAnswers.take(
            [path = pathOf(view(request.target()))](const PlannedAnswer& answer) {
                return !answer.path || *answer.path == path;
            });
    }
    Reply reply =
        planned ? plannedReply(*planned, request) : replyTo(request, answerByRoute(m_routes, request));
    record(std::move(received));
    return reply;
}

void Service::record(ReceivedRequest received)
{
    if (m_state != nullptr) {
        m_state->requests.push_back(std::move(received));
    }
}
} // namespace sandbox
