/// @file
/// The end of reading an answer.
#pragma once

#include <pplx/pplxtasks.h>

namespace VantryIntegrationApi
{
/// Gives up, when it goes away, whatever of its requests is still under way, so that nothing of an answer is
/// downloaded on behind the operation's back. Requests that have ended are not touched.
class GivenUp
{
public:
    GivenUp() = default;
    ~GivenUp() { m_source.cancel(); }
    GivenUp(const GivenUp&) = delete;
    GivenUp(GivenUp&&) = delete;
    GivenUp& operator=(const GivenUp&) = delete;
    GivenUp& operator=(GivenUp&&) = delete;

    pplx::cancellation_token token() const { return m_source.get_token(); }

private:
    pplx::cancellation_token_source m_source;
};
} // namespace VantryIntegrationApi
