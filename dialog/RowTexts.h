// The texts in the rows of the test window.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quorvel {

// Limit for a cell's text, including a terminator.
inline constexpr std::size_t kCellSize = 1024;  // bytes

// Cell texts are valid UTF-8, shorter than kCellSize; longer ones are cut at a character boundary.
// They do not depend on the locale: GTK shows UTF-8 in every locale.

// The source's name followed by a colon, which is kept when the name is cut.
std::string sourceCell(const std::wstring& source);

// A scan, given as base64 text, shown as an output data type of OutputData.h. Control characters
// and spaces appear by name.
std::string dataCell(const std::wstring& base64, int dataType);

// The longest prefix of a UTF-8 text that has at most `most` bytes and ends at a character
// boundary.
std::string_view cutToBytes(std::string_view utf8, std::size_t most);

}  // namespace quorvel
