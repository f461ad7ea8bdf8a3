#include "TicketList.h"
#include "Controls.h"

#include <commctrl.h>
#include <uxtheme.h>

#include <algorithm>
#include <array>

namespace
{
struct Column
{
    const wchar_t* title;
    int width;
    std::wstring TicketListEntry::*text;
};

constexpr int detailColumn = 2;
const std::array<Column, 4> columns{{{L"Ticket", 70, &TicketListEntry::id},
                                     {L"Subject", 230, &TicketListEntry::name},
                                     {L"Detail", 0, &TicketListEntry::detail},
                                     {L"Client", 120, &TicketListEntry::clientName}}};

void setText(HWND list, int row, int column, const std::wstring& text)
{
    LVITEMW item{};
    item.iSubItem = column;
    item.pszText = const_cast<wchar_t*>(text.c_str()); // only read
    SendMessageW(list, LVM_SETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
}

void addRow(HWND list, int row, const TicketListEntry& ticket)
{
    LVITEMW item{};
    item.iItem = row;
    SendMessageW(list, LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item));
    for (std::size_t column = 0; column < columns.size(); ++column) {
        setText(list, row, static_cast<int>(column), ticket.*columns[column].text);
    }
}
} // namespace

HWND TicketList::create(HWND parent, int id)
{
    HWND const list = createControl(
        parent, WC_LISTVIEWW, L"", id,
        LVS_REPORT | LVS_SINGLESEL | LVS_SHOWSELALWAYS | LVS_NOSORTHEADER | WS_TABSTOP, WS_EX_CLIENTEDGE);
    ListView_SetExtendedListViewStyle(list, LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER | LVS_EX_LABELTIP);
    SetWindowTheme(list, L"Explorer", nullptr);
    for (std::size_t i = 0; i < columns.size(); ++i) {
        LVCOLUMNW column{};
        column.mask = LVCF_TEXT | LVCF_SUBITEM;
        column.pszText = const_cast<wchar_t*>(columns[i].title); // only read
        column.iSubItem = static_cast<int>(i);
        SendMessageW(list, LVM_INSERTCOLUMNW, i, reinterpret_cast<LPARAM>(&column));
    }
    return list;
}

void TicketList::arrangeColumns(HWND list, const Layout& layout)
{
    RECT area{};
    GetClientRect(list, &area);
    int left = area.right;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const int width = layout.scaled(columns[i].width);
        left -= width;
        if (i != detailColumn) {
            ListView_SetColumnWidth(list, static_cast<int>(i), width);
        }
    }
    ListView_SetColumnWidth(list, detailColumn, std::max(left, layout.scaled(100)));
}

void TicketList::show(HWND list, const std::vector<TicketListEntry>& tickets, const std::wstring& selectedId)
{
    SendMessageW(list, WM_SETREDRAW, FALSE, 0);
    ListView_DeleteAllItems(list);
    int selected = 0;
    for (std::size_t i = 0; i < tickets.size(); ++i) {
        const auto row = static_cast<int>(i);
        addRow(list, row, tickets[i]);
        selected = tickets[i].id == selectedId ? row : selected;
    }
    ListView_SetItemState(list, selected, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
    ListView_EnsureVisible(list, selected, FALSE);
    SendMessageW(list, WM_SETREDRAW, TRUE, 0);
}

std::wstring TicketList::selectedId(HWND list)
{
    const int row = ListView_GetNextItem(list, -1, LVNI_SELECTED);
    std::array<wchar_t, 260> text{};
    if (row >= 0) {
        ListView_GetItemText(list, row, 0, text.data(), static_cast<int>(text.size()));
    }
    return text.data();
}
