#pragma once

#include "Http.h"

#include <chrono>
#include <cstddef>
#include <deque>
#include <optional>
#include <string>

namespace sandbox
{

// An answer that the control interface has ordered for one request to come.
struct PlannedAnswer
{
    std::optional<std::string> method;
    std::optional<std::string> path;
    std::optional<std::string> raw; // replaces the answer as a whole
    Answer answer;
    std::chrono::milliseconds delay{0};
    std::optional<std::size_t> closeAfter;
};

// Throws HttpError 400 for an order that is malformed.
PlannedAnswer readPlannedAnswer(const Json& order);

class PlannedAnswers
{
public:
    void add(PlannedAnswer answer);
    void clear();

    // The oldest answer that fits the request; it is used up by this.
    std::optional<PlannedAnswer> take(const Request& request);

private:
    std::deque<PlannedAnswer> m_answers;
};

} // namespace sandbox
