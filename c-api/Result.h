/// @file
/// What an operation hands out.
#pragma once

#include "TAVIKVANTRYAPI.h"
#include "vantry.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

struct vantry_result
{
    /// @throws std::bad_alloc
    explicit vantry_result(const ResponseStatus& outcome, int success);

    /// That of one of the library's own statuses, without memory of its own to be freed; null for another
    /// status.
    static vantry_result* shared(std::int32_t status) noexcept;

    void takeTickets(const std::vector<TicketListEntry>& list);

    std::int32_t status;
    bool succeeded;
    bool isShared = false;
    std::string message;
    std::string ticketId;
    std::string noteId;
    /// The tickets' texts one behind the other, each with its zero, and where each ticket's four begin: one
    /// allocation instead of four for each ticket.
    std::string ticketTexts;
    std::vector<std::array<std::size_t, 4>> tickets;
};
