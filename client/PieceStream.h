/// @file
/// A request's body that is read from where its pieces lie.
#pragma once

#include <cpprest/streams.h>

#include <cstdint>
#include <string_view>
#include <vector>

namespace VantryIntegrationApi
{
/// Lends pieces of text, one after the other, as a body. Nothing is copied: what the pieces show must outlive
/// this object, with which the stream ends.
class PieceStream
{
public:
    explicit PieceStream(std::vector<std::string_view> pieces);
    ~PieceStream();
    PieceStream(const PieceStream&) = delete;
    PieceStream(PieceStream&&) = delete;
    PieceStream& operator=(const PieceStream&) = delete;
    PieceStream& operator=(PieceStream&&) = delete;

    concurrency::streams::istream stream() const { return m_buffer.create_istream(); }

private:
    concurrency::streams::streambuf<std::uint8_t> m_buffer;
};
} // namespace VantryIntegrationApi
