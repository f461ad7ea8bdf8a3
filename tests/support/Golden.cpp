#include "support/Golden.h"

#include "support/Text.h"

#include <boost/algorithm/string/replace.hpp>
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <regex>

namespace
{
std::string marked(const std::vector<std::wstring>& lines, const Marks& marks)
{
    static const std::vector<std::pair<std::wregex, std::wstring>> foreign{
        {std::wregex(L"(http_exception happened: ).*"), L"$1{what}"},
        {std::wregex(L"^(FATAL .*::handleResponse; ).*"), L"$1{what}"},
        {std::wregex(L"(Error Code: )-?\\d+"), L"$1{code}"}};
    std::string text;
    for (auto line : lines) {
        for (const auto& [actual, mark] : marks) {
            boost::replace_all(line, actual, mark);
        }
        for (const auto& [pattern, replacement] : foreign) {
            line = std::regex_replace(line, pattern, replacement);
        }
        text += narrow(line) + '\n';
    }
    return text;
}
} // namespace

void expectGolden(const std::string& name, const std::vector<std::wstring>& lines, const Marks& marks)
{
    const auto path = "tests/golden/" + name + ".log";
    const auto actual = marked(lines, marks);
    if (std::getenv("VANTRY_UPDATE_GOLDEN") != nullptr) {
        const auto written = (std::ofstream(path, std::ios::binary) << actual).good();
        ADD_FAILURE() << (written ? "wrote " : "cannot write ") << path;
        return;
    }
    std::ifstream file(path, std::ios::binary);
    const std::string expected(std::istreambuf_iterator<char>(file), {});
    EXPECT_EQ(expected, actual) << path
                                << "\nIf the log is meant to change: VANTRY_UPDATE_GOLDEN=1, git diff";
}
