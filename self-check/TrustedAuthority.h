/// @file
/// The one certificate of this system that the tests need to be trusted.
#pragma once

#include <string>

/// The authority of the sandbox, trusted by the current user as long as this object lives. Windows asks the
/// person before it adds the certificate, and before it removes it. Its key is in the sandbox's memory alone
/// and goes with it: should the certificate stay behind, nobody can use it.
class TrustedAuthority
{
public:
    /// @param pemFile the authority's certificate
    /// @throws std::runtime_error if it cannot be added or the person refuses
    explicit TrustedAuthority(const std::string& pemFile);
    ~TrustedAuthority();
    TrustedAuthority(const TrustedAuthority&) = delete;
    TrustedAuthority(TrustedAuthority&&) = delete;
    TrustedAuthority& operator=(const TrustedAuthority&) = delete;
    TrustedAuthority& operator=(TrustedAuthority&&) = delete;
};
