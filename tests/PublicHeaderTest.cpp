// The header has to stand alone and to survive the macros that system headers of hosts define.
#define min(a, b) (((a) < (b)) ? (a) : (b))
#define max(a, b) (((a) > (b)) ? (a) : (b))
#include "TAVIKVANTRYAPI.h"
#undef min
#undef max

#include <gtest/gtest.h>

#include <type_traits>

TEST(PublicHeader, AFreshStatusSaysThatNothingHasHappened)
{
    const ResponseStatus status;
    EXPECT_EQ(status.httpStatusCode, -1);
    EXPECT_EQ(status.errorMessage, L"Internal Error: Object wasn't initialized.");
}

TEST(PublicHeader, NumbersAreThoseOfTheBinaryInterface)
{
    EXPECT_EQ(WM_ASYNC_REQUEST_FINISHED, 0x8100U);
    EXPECT_EQ(Asset, 0);
    EXPECT_EQ(Client, 1);
    EXPECT_EQ(sizeof(VantryType), 4U);
    EXPECT_TRUE((std::is_same_v<decltype(ResponseStatus::httpStatusCode), std::int32_t>));
    EXPECT_TRUE((std::is_same_v<decltype(TechNote::workTime), std::uint32_t>));
}
