/// @file
/// What all ports share. They are served by one thread, so it needs no lock.
#pragma once

#include "Http.h"
#include "Plans.h"

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace sandbox
{
struct ReceivedRequest
{
    bool secure;
    std::string head;     ///< its bytes; all bytes of what is no HTTP request
    Request request = {}; ///< empty for what is no HTTP request
};

/// An uploaded file: a part of the request that brought it.
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
    std::map<std::string, Attachment> attachments; ///< by their identifiers
    std::vector<std::shared_ptr<const ReceivedRequest>> requests;
    Plans<PlannedAnswer> plannedAnswers;
    std::shared_ptr<Gate> gate = std::make_shared<Gate>(); ///< of answers that are planned from now on
    Plans<PlannedConnection> plannedConnections;
};
} // namespace sandbox
