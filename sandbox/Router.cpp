#include "Router.h"

#include "Target.h"

namespace sandbox
{

namespace
{

bool leadsTo(const Route& route, std::string_view path)
{
    if (route.path.back() == '*') {
        return path.substr(0, route.path.size() - 1) ==
               std::string_view(route.path).substr(0, route.path.size() - 1);
    }
    return path == route.path;
}

Answer answerBy(const Route& route, const Request& request)
{
    try {
        return route.handle(request);
    } catch (const HttpError& error) {
        return errorAnswer(error.status(), error.what(), route.errorMember);
    }
}

} // namespace

Answer answerByRoute(const std::vector<Route>& routes, const Request& request)
{
    const std::string_view path = pathOf(view(request.target()));
    std::string allowed;
    std::string errorMember;
    for (const Route& route : routes) {
        if (!leadsTo(route, path)) {
            continue;
        }
        if (route.method == request.method()) {
            return answerBy(route, request);
        }
        allowed.append(allowed.empty() ? "" : ", ").append(view(to_string(route.method)));
        errorMember = route.errorMember;
    }
    if (allowed.empty()) {
        return errorAnswer(404, "there is nothing at this path");
    }
    Answer answer = errorAnswer(405, "this method is not allowed here", errorMember);
    answer.headers.emplace_back("Allow", allowed);
    return answer;
}

} // namespace sandbox
