#include "Addresses.h"

#include "RestText.h"
#include "VantryApi.h"

#include <boost/algorithm/string/predicate.hpp>
#include <boost/algorithm/string/replace.hpp>

#include <cstdint>
#include <limits>
#include <stdexcept>

using Platform::fromRestText;
using Platform::toRestText;
using web::uri;

namespace VantryIntegrationApi::Utils
{
namespace
{
utility::string_t encoded(const std::wstring& text)
{
    return uri::encode_data_string(toRestText(text));
}
} // namespace

uri serverAddress(const std::wstring& url)
{
    uri address(toRestText(url));
    if (address.port() > std::numeric_limits<std::uint16_t>::max()) {
        throw std::invalid_argument("The port of the endpoint is greater than 65535.");
    }
    return address;
}

std::wstring getSchemeIpAsUrl(const std::wstring& url)
{
    const LumoLogBlock block(CVantryApi::m_logger, "VantryIntegrationApi::Utils::getSchemeIpAsUrl");
    return baseAddress(serverAddress(url));
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
    // The REST SDK's URI has its scheme in small letters, however the host wrote it. What counts is how.
    return serverAddress(url).scheme() == U("https") && boost::starts_with(url, L"https");
}

utility::string_t minimallyEncoded(const std::wstring& text)
{
    auto encoded = uri::encode_uri(toRestText(text), uri::components::query);
    // The REST SDK also encodes "+" and "%", which may stand raw. "%" comes last: else a text that holds
    // "%2B" would become one with "+".
    boost::replace_all(encoded, U("%2B"), U("+"));
    boost::replace_all(encoded, U("%25"), U("%"));
    return encoded;
}

std::optional<std::wstring> shownInQuery(const std::wstring& text)
{
    try {
        return fromRestText(encoded(text));
    } catch (const std::range_error&) {
        return std::nullopt;
    }
}

utility::string_t credentialQuery(const std::wstring& userName, const std::wstring& password)
{
    return web::uri_builder()
        .append_query(U("username=") + encoded(userName), false)
        .append_query(U("password=") + encoded(password), false)
        .query();
}
} // namespace VantryIntegrationApi::Utils
