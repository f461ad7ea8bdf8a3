#pragma once

#include "Layout.h"

#include "TAVIKVANTRYAPI.h"

#include <string>
#include <vector>

/// The list of tickets in the window.
namespace TicketList
{
/// The control; `id` is its number.
HWND create(HWND parent, int id);

/// Gives the columns their widths, the detail's what the others leave.
void arrangeColumns(HWND list, const Layout& layout);

/// Shows the tickets, with one of them selected: that of the given id, or else the first.
void show(HWND list, const std::vector<TicketListEntry>& tickets, const std::wstring& selectedId);

/// Id of the selected ticket; empty if there is none.
std::wstring selectedId(HWND list);
} // namespace TicketList
