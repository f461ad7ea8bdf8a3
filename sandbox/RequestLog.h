#pragma once

#include "Http.h"

#include <string>
#include <vector>

namespace sandbox
{

struct ReceivedRequest
{
    bool secure;
    std::string method; // empty, like the target, when the bytes were no HTTP request
    std::string target;
    std::string raw;
};

class RequestLog
{
public:
    void add(ReceivedRequest request);
    void clear();
    Json toJson() const;

private:
    std::vector<ReceivedRequest> m_requests;
};

} // namespace sandbox
