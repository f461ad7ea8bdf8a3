#include "TicketTable.h"
#include "Text.h"

#include <algorithm>
#include <array>
#include <ostream>

namespace
{
constexpr std::size_t longestCell = 40;

using Row = std::array<std::u32string, 4>;

/// A cell holds whole characters on both platforms, so that their number is its width.
std::u32string makeCell(const std::wstring& text)
{
    auto cell = boost::locale::conv::utf_to_utf<char32_t>(toTerminal(text));
    if (cell.size() > longestCell) {
        cell.resize(longestCell - 1);
        cell += U'\u2026';
    }
    return cell;
}

void printRow(std::ostream& out, Row row, const std::array<std::size_t, 4>& widths)
{
    std::u32string line;
    for (std::size_t column = 0; column < row.size(); ++column) {
        row[column].resize(widths[column], U' ');
        line += U"  " + row[column];
    }
    line.erase(line.find_last_not_of(U' ') + 1);
    out << boost::locale::conv::utf_to_utf<char>(line) << '\n';
}
} // namespace

void printTickets(std::ostream& out, const std::vector<TicketListEntry>& tickets)
{
    std::vector<Row> rows{{U"Id", U"Subject", U"Detail", U"Client"}};
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
        printRow(out, row, widths);
    }
}
