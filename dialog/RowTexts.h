// What the rows of the test window say.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quorvel {

// One cell of the list, with its terminator.
inline constexpr std::size_t kCellSize = 1024;  // bytes

// The texts of cells are valid UTF-8, shorter than kCellSize; a longer one is cut after a whole
// character. The locale of the process has no part in this: GTK shows UTF-8 in every locale.

// The name of a source and a colon. The colon stays when the name is cut.
std::string sourceCell(const std::wstring& source);

// A scan, given as base64 text, in the form of an output data type of OutputData.h. Control
// characters and spaces are shown by their names.
std::string dataCell(const std::wstring& base64, int dataType);

// The longest beginning of a UTF-8 text that has whole characters and at most `most` bytes.
std::string_view cutToBytes(std::string_view utf8, std::size_t most);

}  // namespace quorvel
