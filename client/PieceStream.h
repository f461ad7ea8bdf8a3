/// @file
/// A request's body that is read from where its pieces lie.
#pragma once

#include <cpprest/streams.h>

#include <memory>
#include <string_view>
#include <vector>

namespace VantryIntegrationApi
{
/// Lends pieces of text, one after the other, as a body. What the pieces show must outlive this object, with
/// which the stream ends, also while a thread of the REST SDK reads it.
class PieceStream
{
public:
    explicit PieceStream(std::vector<std::string_view> pieces);
    ~PieceStream();
    PieceStream(const PieceStream&) = delete;
    PieceStream(PieceStream&&) = delete;
    PieceStream& operator=(const PieceStream&) = delete;
    PieceStream& operator=(PieceStream&&) = delete;

    concurrency::streams::istream stream() const;

private:
    class Buffer;
    std::shared_ptr<Buffer> m_buffer;
};
} // namespace VantryIntegrationApi
