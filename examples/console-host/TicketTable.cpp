#include "TicketTable.h"
#include "Text.h"

#include <algorithm>
#include <array>
#include <ostream>
#include <string>

namespace
{
constexpr std::size_t longestCell = 40;

using Row = std::array<std::string, 4>;

/// Every character of UTF-8 text has one such byte.
bool isFirstByte(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
}

std::size_t countCharacters(const std::string& utf8)
{
    return static_cast<std::size_t>(std::count_if(utf8.begin(), utf8.end(), isFirstByte));
}

std::string makeCell(const std::wstring& text)
{
    std::string cell = toTerminal(text);
    if (countCharacters(cell) > longestCell) {
        std::size_t characters = 0;
        const auto isLast = [&](char byte) { return isFirstByte(byte) && ++characters == longestCell; };
        cell.erase(std::find_if(cell.begin(), cell.end(), isLast), cell.end());
        cell += "\xE2\x80\xA6"; // an ellipsis
    }
    return cell;
}

void printRow(std::ostream& out, const Row& row, const std::array<std::size_t, 4>& widths)
{
    std::string line;
    for (std::size_t column = 0; column < row.size(); ++column) {
        line += "  " + row[column] + std::string(widths[column] - countCharacters(row[column]), ' ');
    }
    line.erase(line.find_last_not_of(' ') + 1);
    out << line << '\n';
}
} // namespace

void printTickets(std::ostream& out, const std::vector<TicketListEntry>& tickets)
{
    std::vector<Row> rows{{"Id", "Subject", "Detail", "Client"}};
    for (const auto& ticket : tickets) {
        rows.push_back({makeCell(ticket.id), makeCell(ticket.name), makeCell(ticket.detail),
                        makeCell(ticket.clientName)});
    }
    std::array<std::size_t, 4> widths{};
    for (const auto& row : rows) {
        for (std::size_t column = 0; column < row.size(); ++column) {
            widths[column] = std::max(widths[column], countCharacters(row[column]));
        }
    }
    for (const auto& row : rows) {
        printRow(out, row, widths);
    }
}
