// How single characters are named and shown.
#pragma once

#include <string>

namespace quorvel {

// The name of a control character, "SPACE" for 32 and "DEL" for 127. Empty for other characters.
std::wstring GetSymbolName(wchar_t symbol);

// The character itself or, if it has a name, the name in quotes between two spaces: " 'CR' ".
std::wstring FormatSymbolForDisplay(wchar_t symbol);

// The character's code in decimal.
std::wstring FormatSymbolAsNumber(wchar_t symbol);

}  // namespace quorvel
