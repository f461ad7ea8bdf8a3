/// @file
/// Logs of whole calls, which stand in tests/golden/NAME.log, seen from the working folder, and are the same
/// for both targets.
#pragma once

#include <string>
#include <utility>
#include <vector>

/// Texts that differ from run to run or from target to target, and the marks that stand for them in a file.
using Marks = std::vector<std::pair<std::wstring, std::wstring>>;

/// Compares lines with the file. What the system or the REST SDK says in its own words is "{what}" and
/// "{code}" there, besides `marks`.
///
/// With VANTRY_UPDATE_GOLDEN in the environment it writes the file instead, and the test fails all the same:
/// what has changed is to be read (git diff) before it counts as right.
void expectGolden(const std::string& name, const std::vector<std::wstring>& lines, const Marks& marks = {});
