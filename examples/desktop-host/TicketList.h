#pragma once

#include <windows.h>

#include <commctrl.h>

#include "TAVIKVANTRYAPI.h"

#include <array>
#include <string>
#include <vector>

/// The list of tickets in the window. The control holds nothing itself: it asks for each text that it shows.
class TicketList
{
public:
    /// Widths of the columns but the last, which has what the others leave; in units of 1/96 inch.
    using Widths = std::array<int, 3>;

    TicketList(HWND list, const Widths& widths);

    void fillWidth() const;
    Widths widths() const;

    /// Shows the tickets, with one of them selected: that of the given id, or else the first.
    void show(std::vector<TicketListEntry> tickets, const std::wstring& selectedId);

    /// Sorts by a column; once more by the same one: the other way round. What is shown later is sorted so,
    /// too.
    void sortBy(int column);

    /// The control asks for a text.
    void answer(NMLVDISPINFOW& question) const;

    /// Id of the selected ticket; empty if there is none.
    std::wstring selectedId() const;

private:
    UINT dpi() const { return GetDpiForWindow(m_list); }
    int pixels(int width) const { return MulDiv(width, static_cast<int>(dpi()), USER_DEFAULT_SCREEN_DPI); }
    void sort();
    void select(const std::wstring& id) const;

    HWND m_list;
    std::vector<TicketListEntry> m_tickets;
    int m_sortColumn = 0;
    bool m_isDescending = false;
};
