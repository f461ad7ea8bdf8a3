#include "AnswerBounds.h"

#include <system_error>

using std::chrono::steady_clock;

namespace
{
enum Bound : int
{
    Size = 1,
    Time = 2,
    Interest = 3
};

class BoundsCategory : public std::error_category
{
public:
    const char* name() const noexcept override { return "answer bounds"; }

    std::string message(int bound) const override
    {
        switch (bound) {
        case Size:
            return "The answer of the server is longer than 256 MiB.";
        case Time:
            return "The answer of the server takes longer than 10 minutes.";
        default:
            return "The rest of the server's answer is of no interest.";
        }
    }
};

[[noreturn]] void refuse(Bound bound)
{
    static const BoundsCategory category;
    throw web::http::http_exception(bound, category);
}
} // namespace

void VantryIntegrationApi::AnswerBounds::operator()(web::http::message_direction::direction direction,
                                                    utility::size64_t size)
{
    if (direction != web::http::message_direction::download) {
        return;
    }
    if (*m_givenUp) {
        refuse(Interest);
    }
    if (size > m_sizeLimit) {
        refuse(Size);
    }
    const auto now = steady_clock::now();
    if (m_start == steady_clock::time_point()) {
        m_start = now;
    }
    if (now - m_start > m_timeLimit) {
        refuse(Time);
    }
}
