#include "TicketTable.h"
#include "Text.h"

#include <algorithm>
#include <array>
#include <ostream>
#include <string>

namespace
{
constexpr std::size_t longestCell = 40;

using Row = std::array<std::wstring, 4>;

std::wstring makeCell(const std::wstring& text)
{
    if (text.size() <= longestCell) {
        return text;
    }
    constexpr std::size_t length = longestCell - 1;
    const bool isPairCut = text[length] >= 0xDC00 && text[length] <= 0xDFFF; // two units, on Windows
    return text.substr(0, isPairCut ? length - 1 : length) + L'\u2026';
}
} // namespace

void printTickets(std::ostream& out, const std::vector<TicketListEntry>& tickets)
{
    std::vector<Row> rows{{L"Id", L"Subject", L"Detail", L"Client"}};
    for (const auto& ticket : tickets) {
        rows.push_back({makeCell(ticket.id), makeCell(ticket.name), makeCell(ticket.detail),
                        makeCell(ticket.clientName)});
    }
    std::array<std::size_t, 4> widths{};
    for (const auto& row : rows) {
        for (std::size_t column = 0; column < row.size(); ++column) {
            widths[column] = std::max(widths[column], row[column].size());
        }
    }
    for (const auto& row : rows) {
        std::wstring line;
        for (std::size_t column = 0; column < row.size(); ++column) {
            line += L"  " + row[column] + std::wstring(widths[column] - row[column].size(), L' ');
        }
        line.erase(line.find_last_not_of(L' ') + 1);
        out << toTerminal(line) << '\n';
    }
}
