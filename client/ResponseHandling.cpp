#include "RestText.h"
#include "Utils.h"
#include "VantryApi.h"

#include <cpprest/containerstream.h>

using Platform::fromAnsi;
using Platform::fromRestText;
using web::http::http_response;

namespace json = web::json;

namespace
{
bool contains(const utility::string_t& text, const utility::char_t* part)
{
    return text.find(part) != utility::string_t::npos;
}

void traceBody(const http_response& response)
{
    try {
        const concurrency::streams::container_buffer<std::string> bytes;
        response.body()
            .read_to_end(bytes)
            .then([bytes](std::size_t /*count*/) {
                LOG4CXX_TRACE(VantryIntegrationApi::CVantryApi::m_logger,
                              "Full server response: " << bytes.collection());
            })
            .wait();
    } catch (const std::exception& e) {
        LOG4CXX_WARN(VantryIntegrationApi::CVantryApi::m_logger, e.what());
    }
}
} // namespace

pplx::task<json::value> VantryIntegrationApi::Utils::handleResponse(http_response& response)
{
    LUMO_FUNCTION(CVantryApi::m_logger, "VantryIntegrationApi::Utils::handleResponse");
    LUMO_INFO(L"HTTP Status code: " << response.status_code() << L". HTTP Status message: "
                                    << fromRestText(response.reason_phrase()));
    const auto contentType = response.headers().content_type();
    LUMO_DEBUG(L"Server returned content-type: " << fromRestText(contentType) << L" Content-Length: "
                                                 << response.headers().content_length());

    if (contains(contentType, U("application/json"))) {
        LUMO_INFO(L"Trying to extract json");
        return response.extract_json();
    }
    if (contains(contentType, U("text"))) {
        try {
            LUMO_DEBUG(L"Trying to get the string, and error message from server.");
            const auto text = response.extract_string().get();
            LUMO_INFO(fromRestText(text));
            LUMO_DEBUG(L"Trying to create json value from string.");
            return pplx::task_from_result(json::value::parse(text));
        } catch (const std::exception& e) {
            LUMO_FATAL(fromAnsi(e.what()));
            throw;
        }
    }
    if (log4cxx::Logger::isTraceEnabledFor(lumoLogger)) {
        LUMO_TRACE(L"Try to log content of body returned from server.");
        traceBody(response);
    }
    LUMO_INFO(L"Unfortunately server's response doesn't contain any detail information. "
              L"See http status code and phrase. Returning empy json::value.");
    return pplx::task_from_result(json::value::null());
}
