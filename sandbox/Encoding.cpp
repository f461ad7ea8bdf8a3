#include "Encoding.h"

#include <openssl/evp.h>

#include <algorithm>

namespace sandbox
{
std::string toBase64(std::string_view bytes)
{
    const std::size_t length = (bytes.size() + 2) / 3 * 4;
    std::string text(length + 1, '\0'); // the encoder ends its output with a zero byte
    EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()),
                    reinterpret_cast<const unsigned char*>(bytes.data()), static_cast<int>(bytes.size()));
    text.resize(length);
    return text;
}

std::optional<std::string> fromBase64(std::string_view text)
{
    std::string bytes(text.size() / 4 * 3, '\0');
    const int length =
        EVP_DecodeBlock(reinterpret_cast<unsigned char*>(bytes.data()),
                        reinterpret_cast<const unsigned char*>(text.data()), static_cast<int>(text.size()));
    const auto padding = static_cast<int>(text.size() - text.find_last_not_of('=') - 1);
    bytes.resize(static_cast<std::size_t>(std::max(0, length - padding)));
    // The decoder takes more than it should.
    return toBase64(bytes) == text ? std::optional(bytes) : std::nullopt;
}
} // namespace sandbox
