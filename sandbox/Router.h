#pragma once

#include "Http.h"

#include <boost/beast/http/verb.hpp>

#include <functional>
#include <string>
#include <vector>

namespace sandbox
{

struct Route
{
    boost::beast::http::verb method;
    std::string path; // with a closing '*': every path that begins so
    std::function<Answer(const Request&)> handle;
    std::string errorMember = "error";
};

// Answers 404 for a path without a route, 405 for a method that its routes do not have.
Answer answerByRoute(const std::vector<Route>& routes, const Request& request);

} // namespace sandbox
