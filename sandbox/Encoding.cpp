#include "Encoding.h"

#include <boost/algorithm/hex.hpp>
#include <openssl/evp.h>
#include <openssl/rand.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <stdexcept>

namespace sandbox
{

namespace
{

constexpr std::string_view base64Digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

unsigned char* octets(std::string& text)
{
    return reinterpret_cast<unsigned char*>(text.data());
}

const unsigned char* octets(std::string_view text)
{
    return reinterpret_cast<const unsigned char*>(text.data());
}

} // namespace

std::string toBase64(std::string_view bytes)
{
    const std::size_t length = (bytes.size() + 2) / 3 * 4;
    std::string text(length + 1, '\0'); // the encoder ends its output with a zero byte
    EVP_EncodeBlock(octets(text), octets(bytes), static_cast<int>(bytes.size()));
    text.resize(length);
    return text;
}

std::optional<std::string> fromBase64(std::string_view text)
{
    // The decoder by itself accepts '=' anywhere and skips blanks around the text.
    const std::size_t digits = std::min(text.size(), text.find_first_not_of(base64Digits));
    const std::string_view padding = text.substr(digits);
    if (text.size() % 4 != 0 || (!padding.empty() && padding != "=" && padding != "==")) {
        return std::nullopt;
    }
    std::string bytes(text.size() / 4 * 3, '\0');
    if (EVP_DecodeBlock(octets(bytes), octets(text), static_cast<int>(text.size())) < 0) {
        return std::nullopt;
    }
    bytes.resize(bytes.size() - padding.size());
    return bytes;
}

std::string randomToken()
{
    std::array<unsigned char, 16> bytes{};
    if (RAND_bytes(bytes.data(), static_cast<int>(bytes.size())) != 1) {
        throw std::runtime_error("no random bytes to be had");
    }
    std::string token;
    boost::algorithm::hex_lower(bytes, std::back_inserter(token));
    return token;
}

} // namespace sandbox
