#include "PieceStream.h"

#include <memory>
#include <mutex>
#include <numeric>

namespace streams = concurrency::streams;

namespace VantryIntegrationApi
{
namespace
{
using Byte = std::uint8_t;
} // namespace

/// What the REST SDK asks of a stream buffer; the half of it that writes is refused.
class PieceStream::Buffer : public streams::details::streambuf_state_manager<Byte>
{
public:
    explicit Buffer(std::vector<std::string_view> pieces)
        : streambuf_state_manager(std::ios_base::in), m_pieces(std::move(pieces)),
          m_size(std::accumulate(m_pieces.begin(), m_pieces.end(), std::size_t{0},
                                 [](auto sum, const auto& piece) { return sum + piece.size(); }))
    {}

    bool can_seek() const override { return true; }
    bool has_size() const override { return true; }
    utility::size64_t size() const override { return m_size; }
    std::size_t buffer_size(std::ios_base::openmode /*mode*/) const override { return 0; }
    void set_buffer_size(std::size_t /*size*/, std::ios_base::openmode /*mode*/) override {}
    std::size_t in_avail() const override { return m_size - m_position; }

    pos_type getpos(std::ios_base::openmode /*mode*/) const override
    {
        return static_cast<off_type>(m_position);
    }

    pos_type seekpos(pos_type position, std::ios_base::openmode /*mode*/) override
    {
        if (position < pos_type(0) || position > pos_type(static_cast<off_type>(m_size))) {
            return traits::eof();
        }
        m_position = static_cast<std::size_t>(static_cast<off_type>(position));
        return position;
    }

    pos_type seekoff(off_type offset, std::ios_base::seekdir way, std::ios_base::openmode mode) override
    {
        const auto from = way == std::ios_base::beg ? 0 : way == std::ios_base::cur ? m_position : m_size;
        return seekpos(static_cast<off_type>(from) + offset, mode);
    }

    /// A copy, since a request may still be sending it when its owner has ended. On Windows the REST SDK asks
    /// for what is there first, and otherwise needs a thread of the pool for each reading.
    bool acquire(Byte*& bytes, std::size_t& count) override
    {
        constexpr std::size_t chunk = 64 * 1024UL;
        m_acquired.resize(chunk);
        count = _scopy(m_acquired.data(), chunk);
        bytes = m_acquired.data();
        return true;
    }

    void release(Byte* /*bytes*/, std::size_t count) override { m_position += count; }

    /// From now on there is nothing to read. May be called while another thread reads.
    void detach()
    {
        const std::lock_guard lock(m_mutex);
        m_pieces.clear();
    }

protected:
    pplx::task<std::size_t> _getn(Byte* bytes, std::size_t count) override
    {
        const auto copied = _scopy(bytes, count);
        m_position += copied;
        return pplx::task_from_result(copied);
    }

    std::size_t _scopy(Byte* bytes, std::size_t count) override
    {
        const std::lock_guard lock(m_mutex);
        std::size_t copied = 0;
        while (copied < count) {
            const auto rest = restOfPiece(m_position + copied);
            if (rest.empty()) {
                break;
            }
            copied += rest.copy(reinterpret_cast<char*>(bytes + copied), count - copied);
        }
        return copied;
    }

    int_type _sgetc() override
    {
        Byte byte = 0;
        return _scopy(&byte, 1) == 1 ? byte : traits::eof();
    }

    int_type _sbumpc() override
    {
        const auto byte = _sgetc();
        m_position += byte == traits::eof() ? 0 : 1;
        return byte;
    }

    pplx::task<int_type> _getc() override { return pplx::task_from_result(_sgetc()); }
    pplx::task<int_type> _bumpc() override { return pplx::task_from_result(_sbumpc()); }

    pplx::task<int_type> _nextc() override
    {
        _sbumpc();
        return _getc();
    }

    pplx::task<int_type> _ungetc() override
    {
        if (m_position == 0) {
            return pplx::task_from_result<int_type>(traits::eof());
        }
        --m_position;
        return _getc();
    }

    pplx::task<int_type> _putc(Byte /*byte*/) override
    {
        return pplx::task_from_result<int_type>(traits::eof());
    }
    pplx::task<std::size_t> _putn(const Byte* /*bytes*/, std::size_t /*count*/) override
    {
        return pplx::task_from_result<std::size_t>(0);
    }
    pplx::task<bool> _sync() override { return pplx::task_from_result(true); }
    Byte* _alloc(std::size_t /*count*/) override { return nullptr; }
    void _commit(std::size_t /*count*/) override {}

private:
    /// From `position` to the end of the piece that it is in; empty at the end of the last one.
    std::string_view restOfPiece(std::size_t position) const
    {
        for (const auto& piece : m_pieces) {
            if (position < piece.size()) {
                return piece.substr(position);
            }
            position -= piece.size();
        }
        return {};
    }

    std::mutex m_mutex;
    std::vector<std::string_view> m_pieces; ///< guarded by the mutex
    std::vector<Byte> m_acquired;
    const std::size_t m_size;
    std::size_t m_position = 0;
};

PieceStream::PieceStream(std::vector<std::string_view> pieces)
    : m_buffer(std::make_shared<Buffer>(std::move(pieces)))
{}

PieceStream::~PieceStream()
{
    m_buffer->detach(); // a request that has failed, or is no longer waited for, may still hold it
}

streams::istream PieceStream::stream() const
{
    return streams::streambuf<Byte>(m_buffer).create_istream();
}
} // namespace VantryIntegrationApi
