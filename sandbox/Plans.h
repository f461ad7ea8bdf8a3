/// @file
/// What the control interface has ordered for requests and connections to come.
#pragma once

#include "Certificates.h"
#include "Http.h"

#include <algorithm>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace sandbox
{
/// An answer for one request to come.
struct PlannedAnswer
{
    std::uint64_t skip = 0;          ///< so many that fit are let through first
    std::optional<std::string> path; ///< of the requests that it fits
    Step before;                     ///< what is waited for before the answer
    std::optional<Reply> script;     ///< replaces the answer
    Answer answer;
};

/// The fate of one connection to come: a misbehaviour; or when it is read from, its certificate and its
/// version of TLS.
struct PlannedConnection
{
    std::uint64_t skip = 0;
    std::optional<bool> secure;
    std::shared_ptr<const bool> released; ///< whether it may be read from; null: it may
    std::optional<Reply> misbehaviour;    ///< instead of the TLS handshake and the requests
    CertificateKind certificate = CertificateKind::Good;
    std::optional<int> tlsVersion; ///< the only one that is spoken, as OpenSSL numbers it
};

/// @param released releases the answer or the connection if the order says that it is held
/// @throws HttpError 400 or Json::exception for an order that is malformed
PlannedAnswer readPlannedAnswer(const Json& order, const std::shared_ptr<const bool>& released);
PlannedConnection readPlannedConnection(const Json& order, const std::shared_ptr<const bool>& released);

/// Each plan is used once, the oldest first.
template <typename Plan>
class Plans
{
public:
    void add(Plan plan) { m_plans.push_back(std::move(plan)); }

    /// The oldest plan that fits, used up by this; nothing when it lets this one through.
    template <typename Fits>
    std::optional<Plan> take(Fits fits)
    {
        const auto found = std::find_if(m_plans.begin(), m_plans.end(), fits);
        if (found == m_plans.end()) {
            return std::nullopt;
        }
        if (found->skip > 0) {
            --found->skip;
            return std::nullopt;
        }
        std::optional<Plan> plan(*found);
        m_plans.erase(found);
        return plan;
    }

private:
    std::deque<Plan> m_plans;
};
} // namespace sandbox
