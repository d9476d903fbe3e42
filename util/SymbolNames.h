// How single characters are named and shown.
#pragma once

#include <string>

namespace quorvel {

// The name of a control character, of the space ("SPACE") and of 127 ("DEL"); empty for others.
std::wstring GetSymbolName(wchar_t symbol);

// The character itself, or its name in quotes between two spaces: " 'CR' ".
std::wstring FormatSymbolForDisplay(wchar_t symbol);

// The character's code in decimal.
std::wstring FormatSymbolAsNumber(wchar_t symbol);

}  // namespace quorvel
