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
    const auto padding = std::count(
        text.end() - std::min<std::ptrdiff_t>(2, static_cast<std::ptrdiff_t>(text.size())), text.end(), '=');
    if (text.size() % 4 != 0 || length != static_cast<int>(bytes.size())) {
        return std::nullopt;
    }
    bytes.resize(bytes.size() - padding);
    return toBase64(bytes) == text ? std::optional(bytes)
                                   : std::nullopt; // the decoder accepts more than it should
}
} // namespace sandbox
