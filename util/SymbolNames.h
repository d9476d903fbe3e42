// How single characters are named and shown, and how device names are cleaned for the settings
// form.
#pragma once

#include <string>

namespace quorvel {

// The name of a control character, of the space ("SPACE") and of 127 ("DEL"); empty for others.
std::wstring GetSymbolName(wchar_t symbol);

// The character itself, or its name in quotes between two spaces: " 'CR' ".
std::wstring FormatSymbolForDisplay(wchar_t symbol);

// The character's code in decimal.
std::wstring FormatSymbolAsNumber(wchar_t symbol);

// Whether the byte's top bit is set.
bool NotASCII(char byte);

// Replaces by a space, in place, what may not stand in an XML text or attribute as it is, and every
// byte that is not ASCII. Always true.
bool TrimXMLIllegalChars(std::string& text);

}  // namespace quorvel
