#include "ResponseHandling.h"

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

/// The parameters of a content type, without the blanks around them.
utility::string_t parametersOf(const utility::string_t& contentType)
{
    const auto end = contentType.find(U(';'));
    return end == utility::string_t::npos ? utility::string_t()
                                          : boost::trim_copy(contentType.substr(end + 1));
}

bool isUtf8Json(const utility::string_t& contentType)
{
    return contentType == U("application/json") ||
           (boost::starts_with(contentType, U("application/json")) &&
            boost::iequals(parametersOf(contentType), U("charset=utf-8")));
}

bool isUtf8Text(const utility::string_t& contentType)
{
    return boost::starts_with(contentType, U("text/")) &&
           boost::iequals(parametersOf(contentType), U("charset=utf-8"));
}

/// The body as it came, whatever its content type, once it is there. Not a task of a string: tasks copy their
/// results each time they hand them on.
std::string bodyBytes(const http_response& complete)
{
    auto body = complete.body().streambuf();
    std::string bytes(body.in_avail(), '\0');
    body.getn(reinterpret_cast<std::uint8_t*>(bytes.data()), bytes.size()).wait();
    return bytes;
}

JsonAnswer shared(json::value&& value)
{
    return std::make_shared<const json::value>(std::move(value));
}

json::value parsed(utility::string_t text)
{
    return json::value::parse(toParserText(std::move(text)));
}

/// UTF-8, the usual form, is read here: the REST SDK would refuse bytes that are no text on one target and
/// take them on the other. Every other form is the REST SDK's matter.
pplx::task<JsonAnswer> extractJson(http_response& response, const utility::string_t& contentType)
{
    if (!isUtf8Json(contentType)) {
        return response.extract_json().then([](json::value value) { return shared(std::move(value)); });
    }
    const auto read = [](const http_response& complete) {
        auto text = restTextOfUtf8(bodyBytes(complete));
        return shared(text.empty() ? json::value() : parsed(std::move(text)));
    };
    // A short body is there with its head, and need not go to another thread.
    const auto complete = response.content_ready();
    return complete.is_done() ? pplx::task_from_result(read(complete.get())) : complete.then(read);
}

utility::string_t extractText(http_response& response, const utility::string_t& contentType)
{
    return isUtf8Text(contentType) ? restTextOfUtf8(bodyBytes(response.content_ready().get()))
                                   : response.extract_string().get();
}

void traceBody(const http_response& response)
{
    try {
        response.content_ready()
            .then([](const http_response& complete) {
                const auto bytes = bodyBytes(complete);
                LUMO_LINE(CVantryApi::m_logger, Trace, "Full server response: " << bytes);
            })
            .wait();
    } catch (const std::exception& e) {
        LUMO_LINE(CVantryApi::m_logger, Warn, e.what());
    }
}
} // namespace

pplx::task<JsonAnswer> handleResponse(http_response& response)
{
    LUMO_FUNCTION(CVantryApi::m_logger, "VantryIntegrationApi::Utils::handleResponse");
    LUMO_INFO(L"HTTP Status code: " << response.status_code() << L". HTTP Status message: "
                                    << fromRestText(response.reason_phrase()));
    const auto contentType = response.headers().content_type();
    LUMO_DEBUG(L"Server returned content-type: " << fromRestText(contentType) << L" Content-Length: "
                                                 << response.headers().content_length());

    if (contains(contentType, U("application/json"))) {
        LUMO_INFO(L"Trying to extract json");
        return extractJson(response, contentType);
    }
    if (contains(contentType, U("text"))) {
        try {
            LUMO_DEBUG(L"Trying to get the string, and error message from server.");
            const auto text = extractText(response, contentType);
            LUMO_INFO(fromRestText(text));
            LUMO_DEBUG(L"Trying to create json value from string.");
            return pplx::task_from_result(shared(parsed(text)));
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
    return pplx::task_from_result(shared(json::value::null()));
}

const json::value& member(const json::value& object, const utility::char_t* name)
{
    static const json::value none;
    if (!object.is_object()) {
        return none;
    }
    const auto found = object.as_object().find(name);
    return found == object.as_object().end() ? none : found->second;
}

std::wstring jsonText(const json::value& value)
{
    return fromRestText(value.serialize());
}
} // namespace VantryIntegrationApi::Utils
