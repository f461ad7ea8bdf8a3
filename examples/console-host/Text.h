/// @file
/// The program speaks UTF-8 with its surroundings and wide text with the library.
#pragma once

#include <string>

/// @throws std::invalid_argument if it is not valid UTF-8
std::wstring toWide(const std::string& utf8);

/// Of a text that is not valid, log4cxx makes what it can.
std::string toUtf8(const std::wstring& text);

/// Text from elsewhere for the terminal: no control character of it gets there.
std::string toTerminal(std::wstring text);
