#include "RequestLog.h"

#include "Encoding.h"

namespace sandbox
{

void RequestLog::add(ReceivedRequest request)
{
    m_requests.push_back(std::move(request));
}

void RequestLog::clear()
{
    m_requests.clear();
}

Json RequestLog::toJson() const
{
    Json list = Json::array();
    for (const ReceivedRequest& request : m_requests) {
        list.push_back({{"secure", request.secure},
                        {"method", request.method},
                        {"target", request.target},
                        {"raw", toBase64(request.raw)}});
    }
    return list;
}

} // namespace sandbox
