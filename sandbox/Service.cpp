#include "Service.h"

#include "Target.h"

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
        return errorAnswer(error.status(), error.what(), route.errorMember);
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
} // namespace

std::optional<PlannedConnection> Service::accepted(bool /*secure*/)
{
    return std::nullopt;
}

void Service::received(const std::shared_ptr<const ReceivedRequest>& /*request*/) {}

Reply Service::reply(const Request& request)
{
    return replyTo(request, answerByRoute(m_routes, request));
}
} // namespace sandbox
