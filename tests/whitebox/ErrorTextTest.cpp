#include "ErrorText.h"

#include "platform/PlatformSupport.h"
#include "support/Text.h"

#include <cpprest/asyncrt_utils.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace
{
/// Has a text for 5 alone, and for any other number what the REST SDK's category has.
class Category : public std::error_category
{
public:
    const char* name() const noexcept override { return "test"; }

    std::string message(int code) const override
    {
        const auto number = std::to_string(code);
        if (code == 5) {
            return inThreadCodePage(L"five \u00E9");
        }
        return isWindows ? "Unable to get an error message for error code: " + number + '.'
                         : "Unknown error " + number;
    }
};

std::wstring textOf(int code)
{
    static const Category category;
    return Platform::errorText({code, category});
}

constexpr int tls(int reason)
{
    return 20 << 23 | reason; // as OpenSSL packs its library of this number
}
} // namespace

TEST(ErrorText, IsTheCategorysOwnWhereItHasOne)
{
    EXPECT_EQ(textOf(5), L"five \u00E9");
    EXPECT_EQ(Platform::errorText(std::make_error_code(std::errc::timed_out)),
              wide(std::make_error_code(std::errc::timed_out).message()));
}

TEST(ErrorText, SaysInWordsWhatTheCategoryHasNoTextFor)
{
    using Rows = std::vector<std::pair<int, std::wstring>>;
    const auto table =
        isWindows ? Rows{{12002, L"in time"},
                         {12007, L"could not be resolved"},
                         {12029, L"Could not connect"},
                         {12030, L"ended early"},
                         {12037, L"expired"},
                         {12038, L"for another server"},
                         {12044, L"client certificate"},
                         {12045, L"unknown to this system"},
                         {12152, L"not valid HTTP"},
                         {12157, L"certificate is not trusted"},
                         {12170, L"revoked"},
                         {12175, L"certificate is not trusted"}}
                  : Rows{{tls(134), L"The server's certificate is not trusted"},
                         {tls(156), L"does not answer with TLS"},
                         {tls(267), L"does not answer with TLS"},
                         {tls(294), L"ended the secure connection early"},
                         {tls(1040), L"could not agree"},
                         {tls(1070), L"no common version"},
                         {tls(1116), L"client certificate"},
                         {tls(1080), L"No secure connection to the server: tlsv1 alert internal error."}};
    for (const auto& [code, words] : table) {
        const auto text = textOf(code);
        EXPECT_NE(text.find(words), std::wstring::npos) << code << ": " << narrow(text);
        // The REST SDK's own category: no text on Linux and in Wine, the system's on Windows.
        const auto thrown = Platform::errorText({code, utility::details::platform_category()});
        EXPECT_EQ(thrown.find(std::to_wstring(code)), std::wstring::npos) << narrow(thrown);
    }
}

TEST(ErrorText, IsThePlaceholderForANumberThatNobodyKnows)
{
    const auto text = textOf(123456789);
    EXPECT_NE(text.find(L"123456789"), std::wstring::npos) << narrow(text);
}
