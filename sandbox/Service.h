#pragma once

#include "Http.h"
#include "RequestLog.h"

#include <chrono>
#include <string>

namespace sandbox
{

enum class Afterwards
{
    KeepAlive,
    Close, // in good order: a secure connection says goodbye first
    Drop   // the way a broken server does
};

struct Reply
{
    std::string bytes;
    std::chrono::milliseconds delay{0};
    Afterwards afterwards = Afterwards::KeepAlive;
};

// What a port serves. All ports share one thread, so services need no locks.
class Service
{
public:
    Service() = default;
    Service(const Service&) = delete;
    Service& operator=(const Service&) = delete;
    Service(Service&&) = delete;
    Service& operator=(Service&&) = delete;
    virtual ~Service() = default;

    // Comes before the reply; for bytes that are no HTTP request nothing else comes.
    virtual void received(ReceivedRequest request) = 0;
    virtual Reply reply(const Request& request) = 0;
};

inline Reply replyWith(const Answer& answer, const Request& request)
{
    const bool keepAlive = keepsAlive(request);
    const bool withBody = request.method() != boost::beast::http::verb::head;
    return {serialize(answer, keepAlive, withBody), std::chrono::milliseconds(0),
            keepAlive ? Afterwards::KeepAlive : Afterwards::Close};
}

} // namespace sandbox
