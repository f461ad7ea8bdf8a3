#include "AnswerBounds.h"

#include <system_error>

using std::chrono::steady_clock;

namespace
{
enum Bound : int
{
    Size = 1,
    Time = 2
};

class BoundsCategory : public std::error_category
{
public:
    const char* name() const noexcept override { return "answer bounds"; }

    std::string message(int bound) const override
    {
        return bound == Size ? "The answer of the server is longer than 256 MiB."
                             : "The answer of the server takes longer than 10 minutes.";
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
