#include "TicketList.h"

#include <shlwapi.h>
#include <uxtheme.h>

#include <algorithm>
#include <utility>

namespace
{
struct Column
{
    const wchar_t* title;
    std::wstring TicketListEntry::*text;
};

const std::array<Column, 4> columns{{{L"Ticket", &TicketListEntry::id},
                                     {L"Subject", &TicketListEntry::name},
                                     {L"Client", &TicketListEntry::clientName},
                                     {L"Detail", &TicketListEntry::detail}}};
constexpr int lastColumn = 3;
constexpr int smallestWidth = 100; ///< of the last column, in units of 1/96 inch
} // namespace

TicketList::TicketList(HWND list, const Widths& widths) : m_list(list)
{
    ListView_SetExtendedListViewStyle(list, LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER | LVS_EX_LABELTIP);
    SetWindowTheme(list, L"Explorer", nullptr);
    for (int i = 0; i <= lastColumn; ++i) {
        const auto index = static_cast<std::size_t>(i);
        LVCOLUMNW column{};
        column.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_SUBITEM;
        column.cx = pixels(i == lastColumn ? smallestWidth : widths[index]);
        column.pszText = const_cast<wchar_t*>(columns[index].title); // only read
        column.iSubItem = i;
        SendMessageW(list, LVM_INSERTCOLUMNW, index, reinterpret_cast<LPARAM>(&column));
    }
    sort();
}

void TicketList::fillWidth() const
{
    RECT area{};
    GetClientRect(m_list, &area);
    int left = area.right;
    for (int i = 0; i < lastColumn; ++i) {
        left -= ListView_GetColumnWidth(m_list, i);
    }
    ListView_SetColumnWidth(m_list, lastColumn, std::max(left, pixels(smallestWidth)));
}

TicketList::Widths TicketList::widths() const
{
    Widths widths{};
    for (std::size_t i = 0; i < widths.size(); ++i) {
        widths[i] = MulDiv(ListView_GetColumnWidth(m_list, static_cast<int>(i)), USER_DEFAULT_SCREEN_DPI,
                           static_cast<int>(dpi()));
    }
    return widths;
}

void TicketList::show(std::vector<TicketListEntry> tickets, const std::wstring& selectedId)
{
    m_tickets = std::move(tickets);
    sort();
    select(selectedId);
}

void TicketList::sortBy(int column)
{
    const std::wstring selected = selectedId();
    m_isDescending = column == m_sortColumn && !m_isDescending;
    m_sortColumn = column;
    sort();
    select(selected);
}

/// Numbers in a text count as numbers: 999 comes before 1000.
void TicketList::sort()
{
    const auto text = columns[static_cast<std::size_t>(m_sortColumn)].text;
    std::stable_sort(m_tickets.begin(), m_tickets.end(),
                     [this, text](const TicketListEntry& left, const TicketListEntry& right) {
                         const int order = StrCmpLogicalW((left.*text).c_str(), (right.*text).c_str());
                         return m_isDescending ? order > 0 : order < 0;
                     });
    HWND const header = ListView_GetHeader(m_list);
    for (int i = 0; i <= lastColumn; ++i) {
        HDITEMW item{};
        item.mask = HDI_FORMAT;
        item.fmt = HDF_LEFT | HDF_STRING;
        if (i == m_sortColumn) {
            item.fmt |= m_isDescending ? HDF_SORTDOWN : HDF_SORTUP;
        }
        SendMessageW(header, HDM_SETITEMW, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&item));
    }
}

void TicketList::select(const std::wstring& id) const
{
    ListView_SetItemState(m_list, -1, 0, LVIS_SELECTED | LVIS_FOCUSED);
    ListView_SetItemCount(m_list, m_tickets.size());
    const auto found =
        std::find_if(m_tickets.begin(), m_tickets.end(), [&](const auto& ticket) { return ticket.id == id; });
    const int row = found == m_tickets.end() ? 0 : static_cast<int>(found - m_tickets.begin());
    ListView_SetItemState(m_list, row, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
    ListView_EnsureVisible(m_list, row, FALSE);
    InvalidateRect(m_list, nullptr, TRUE);
}

void TicketList::answer(NMLVDISPINFOW& question) const
{
    LVITEMW& item = question.item;
    if ((item.mask & LVIF_TEXT) != 0) {
        const auto& text = m_tickets.at(static_cast<std::size_t>(item.iItem)).*
                           columns.at(static_cast<std::size_t>(item.iSubItem)).text;
        item.pszText = const_cast<wchar_t*>(text.c_str()); // only read
    }
}

std::wstring TicketList::selectedId() const
{
    const int row = ListView_GetNextItem(m_list, -1, LVNI_SELECTED);
    return row < 0 ? std::wstring() : m_tickets.at(static_cast<std::size_t>(row)).id;
}
