#pragma once

#include "TAVIKVANTRYAPI.h"

#include <iosfwd>
#include <vector>

/// Prints tickets as a table, one line each.
void printTickets(std::ostream& out, const std::vector<TicketListEntry>& tickets);
