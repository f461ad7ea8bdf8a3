#include "RequestConnection.h"

namespace
{
/// WinHTTP shows no socket, and a request that is cancelled while it ends has its handle closed twice by the
/// REST SDK. WinHTTP's own limits hold here.
class UnseenConnection : public Platform::RequestConnection
{
public:
    void opened() override {}
    std::optional<std::uint64_t> bytesRead() const override { return std::nullopt; }
    void end() override {}
};
} // namespace

std::shared_ptr<Platform::RequestConnection>
Platform::watchConnection(web::http::client::http_client_config& /*config*/, web::uri& /*base*/,
                          web::http::http_request& /*request*/)
{
    return std::make_shared<UnseenConnection>();
}
