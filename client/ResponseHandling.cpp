#include "ResponseHandling.h"

#include "BoundedExchange.h"
#include "JsonBudget.h"
#include "Module.h"
#include "RestText.h"
#include "VantryApi.h"

#include <boost/algorithm/string/predicate.hpp>
#include <boost/algorithm/string/trim.hpp>

using Platform::fromAnsi;
using Platform::fromRestText;
using Platform::restTextOfUtf8;
using Platform::toParserText;
using web::http::http_response;

namespace json = web::json;

namespace VantryIntegrationApi::Utils
{
namespace
{
bool contains(const utility::string_t& text, const utility::char_t* part)
{
    return text.find(part) != utility::string_t::npos;
}

bool isJson(const utility::string_t& contentType)
{
    return contains(contentType, U("application/json"));
}

bool isText(const utility::string_t& contentType)
{
    return contains(contentType, U("text"));
}

/// The media type of a content type, without its parameters.
utility::string_t mediaType(const utility::string_t& contentType)
{
    return boost::trim_copy(contentType.substr(0, contentType.find(U(';'))));
}

/// The parameters of a content type, without the blanks around them.
utility::string_t parametersOf(const utility::string_t& contentType)
{
    const auto end = contentType.find(U(';'));
    return end == utility::string_t::npos ? utility::string_t()
                                          : boost::trim_copy(contentType.substr(end + 1));
}

bool saysUtf8(const utility::string_t& contentType)
{
    return boost::iequals(parametersOf(contentType), U("charset=utf-8"));
}

/// The body as it came, whatever its content type.
std::string bodyBytes(const http_response& response)
{
    bodyOf(response).wait();
    auto body = response.body().streambuf();
    std::string bytes(body.in_avail(), '\0');
    body.getn(reinterpret_cast<std::uint8_t*>(bytes.data()), bytes.size()).wait();
    return bytes;
}

json::value parsed(utility::string_t text)
{
    requireAffordable(text);
    return json::value::parse(toParserText(std::move(text)));
}

/// The text of a body. UTF-8, the usual form, is read here: the REST SDK would refuse bytes that are no text
/// on one target and take them on the other. Every other form is the REST SDK's matter.
utility::string_t extractText(const http_response& response, bool isUtf8)
{
    return isUtf8 ? restTextOfUtf8(bodyBytes(response)) : response.extract_string().get();
}

json::value extractJson(const http_response& response, const utility::string_t& contentType)
{
    constexpr const utility::char_t* jsonType = U("application/json");
    if (mediaType(contentType) != jsonType) {
        return response.extract_json().get(); // which refuses the types that only look like it
    }
    auto text = extractText(response, contentType == jsonType || saysUtf8(contentType));
    return text.empty() ? response.extract_json().get() : parsed(std::move(text));
}

void traceBody(const http_response& response)
{
    try {
        const auto bytes = bodyBytes(response);
        LUMO_LINE(CVantryApi::m_logger, Trace, "Full server response: " << bytes);
    } catch (const std::exception& e) {
        LUMO_LINE(CVantryApi::m_logger, Warn, e.what());
    }
}
} // namespace

bool readsBody(const http_response& response)
{
    const auto contentType = response.headers().content_type();
    return isJson(contentType) || isText(contentType) ||
           log4cxx::Logger::isTraceEnabledFor(CVantryApi::m_logger);
}

json::value handleResponse(http_response& response)
{
    const LumoFunction log(CVantryApi::m_logger, "VantryIntegrationApi::Utils::handleResponse");
    LUMO_INFO(log, L"HTTP Status code: " << response.status_code() << L". HTTP Status message: "
                                         << fromRestText(response.reason_phrase()));
    const auto contentType = response.headers().content_type();
    LUMO_DEBUG(log, L"Server returned content-type: " << fromRestText(contentType) << L" Content-Length: "
                                                      << response.headers().content_length());

    if (isJson(contentType)) {
        LUMO_INFO(log, L"Trying to extract json");
        return extractJson(response, contentType);
    }
    if (isText(contentType)) {
        try {
            LUMO_DEBUG(log, L"Trying to get the string, and error message from server.");
            const auto text =
                extractText(response, boost::starts_with(contentType, U("text/")) && saysUtf8(contentType));
            LUMO_INFO(log, fromRestText(text));
            LUMO_DEBUG(log, L"Trying to create json value from string.");
            return parsed(text);
        } catch (const std::exception& e) {
            LUMO_FATAL(log, fromAnsi(e.what()));
            throw;
        }
    }
    if (log4cxx::Logger::isTraceEnabledFor(log.logger())) {
        LUMO_TRACE(log, L"Try to log content of body returned from server.");
        traceBody(response);
    }
    LUMO_INFO(log, L"Unfortunately server's response doesn't contain any detail information. "
                   L"See http status code and phrase. Returning empy json::value.");
    return json::value::null();
}

const json::value& member(const json::value& object, const utility::char_t* name)
{
    static const Platform::ModuleObject<json::value> none;
    if (!object.is_object()) {
        return none.object;
    }
    const auto found = object.as_object().find(name);
    return found == object.as_object().end() ? none.object : found->second;
}

std::wstring jsonText(const json::value& value)
{
    return fromRestText(value.serialize());
}
} // namespace VantryIntegrationApi::Utils
