/// @file
/// The authorities that the current user of this Windows trusts. Real Windows asks the person at every
/// change. With VANTRY_ROOTS=machine in the environment they are those of all users, which an administrator
/// changes unasked.
#pragma once

#include <string>

/// @param der the authority's certificate, which may be trusted already
/// @throws std::runtime_error if it cannot be added or the person refuses
void trustByUser(const std::string& der);

/// Removes the authorities of sandboxes and tells how many are still there afterwards.
int removeSandboxAuthorities();
