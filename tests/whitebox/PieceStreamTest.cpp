// The body of an upload, as the REST SDK reads it on either target, and once more after a challenge.
#include "PieceStream.h"

#include <gtest/gtest.h>

#include <optional>

using VantryIntegrationApi::PieceStream;

namespace
{
using Buffer = concurrency::streams::streambuf<std::uint8_t>;

const std::string whole = "head, the content and the tail";
const std::string_view view = whole;
const std::vector<std::string_view> pieces{view.substr(0, 4), {}, view.substr(4, 20), view.substr(24), {}};

std::string readInSteps(Buffer buffer, std::size_t step)
{
    std::string read;
    std::string part(step, '\0');
    while (const auto count = buffer.getn(reinterpret_cast<std::uint8_t*>(part.data()), step).get()) {
        read.append(part, 0, count);
    }
    return read;
}

} // namespace

TEST(PieceStream, GivesThePiecesInOrderInStepsOfAnySizeAsOftenAsItIsBegun)
{
    const PieceStream body(pieces);
    auto buffer = body.stream().streambuf();
    const auto start = buffer.getpos(std::ios_base::in);
    for (const std::size_t step : {1U, 3U, 4U, 5U, 30U, 100U}) {
        EXPECT_EQ(buffer.seekpos(start, std::ios_base::in), start);
        EXPECT_EQ(buffer.in_avail(), whole.size());
        EXPECT_EQ(readInSteps(buffer, step), whole) << step;
        EXPECT_EQ(buffer.in_avail(), 0U);
    }
}

TEST(PieceStream, LendsACopyThatOutlivesItsOwner)
{
    std::string file = "file";
    std::optional<PieceStream> body(std::vector<std::string_view>{file});
    const auto stream = body->stream();
    std::uint8_t* bytes = nullptr;
    std::size_t count = 0;
    EXPECT_TRUE(stream.streambuf().acquire(bytes, count));
    body.reset();
    file.assign(file.size(), 'x');
    EXPECT_EQ(std::string(bytes, bytes + count), "file");
    stream.streambuf().release(bytes, count);
    EXPECT_EQ(readInSteps(stream.streambuf(), 1), "");
}

TEST(PieceStream, EndsWithItsOwner)
{
    std::optional<PieceStream> body(pieces);
    const auto stream = body->stream();
    body.reset();
    EXPECT_EQ(readInSteps(stream.streambuf(), 1), "");
}
