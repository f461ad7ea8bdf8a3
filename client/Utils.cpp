#include "Utils.h"

#include "Module.h"
#include "RestText.h"
#include "VantryApi.h"
#include "WindowsCalls.h"

#include <boost/algorithm/string/predicate.hpp>
#include <boost/algorithm/string/replace.hpp>

#include <array>

using Platform::fromRestText;
using Platform::toRestText;
using web::uri;

namespace VantryIntegrationApi::Utils
{
std::wstring LoadStringW(std::uint32_t id)
{
    const LumoLogBlock block(CVantryApi::m_logger, "VantryIntegrationApi::Utils::LoadStringW");
    std::array<wchar_t, 512> text{};
    // ERROR_RESOURCE_NAME_NOT_FOUND and its kin leave the buffer as it is: an empty text.
    ::LoadStringW(Platform::moduleHandle(), id, text.data(), static_cast<int>(text.size()));
    return text.data();
}

std::wstring getSchemeIpAsUrl(const std::wstring& url)
{
    const LumoLogBlock block(CVantryApi::m_logger, "VantryIntegrationApi::Utils::getSchemeIpAsUrl");
    return baseAddress(uri(toRestText(url)));
}

std::wstring baseAddress(const uri& url)
{
    auto address = url.scheme() + U("://") + url.host();
    if (url.port() != -1 && !url.is_port_default()) {
        address += U(":") + utility::conversions::details::to_string_t(url.port());
    }
    return fromRestText(address);
}

bool isSecureScheme(const std::wstring& url)
{
    // The library's URI has its scheme in small letters: as the host wrote it, it stands in the text alone.
    return uri(toRestText(url)).scheme() == U("https") && boost::starts_with(url, L"https");
}

utility::string_t rawQueryText(const std::wstring& text)
{
    auto encoded = uri::encode_uri(toRestText(text), uri::components::query);
    // The library also encodes "+" and "%", which have a raw form. "%" last: it may begin what was a "%2B".
    boost::replace_all(encoded, U("%2B"), U("+"));
    boost::replace_all(encoded, U("%25"), U("%"));
    return encoded;
}

utility::string_t credentialQuery(const std::wstring& userName, const std::wstring& password)
{
    return web::uri_builder()
        .append_query(U("username=") + uri::encode_data_string(toRestText(userName)), false)
        .append_query(U("password=") + uri::encode_data_string(toRestText(password)), false)
        .query();
}

web::json::value member(const web::json::value& object, const utility::char_t* name)
{
    return object.is_object() && object.has_field(name) ? object.at(name) : web::json::value::null();
}

std::wstring jsonText(const web::json::value& value)
{
    return fromRestText(value.serialize());
}
} // namespace VantryIntegrationApi::Utils
