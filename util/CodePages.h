// Decoding device bytes and names into wide text.
#pragma once

#include <string>
#include <string_view>

namespace quorvel {

// The encodings that the settings offer, by the names that the host and the user see.
inline constexpr std::wstring_view kEncodingUtf8 = L"UTF-8";
inline constexpr std::wstring_view kEncodingWindows1251 = L"Windows-1251";

// `bytes` decoded from the named encoding; every name but "Windows-1251" means UTF-8. All or
// nothing: empty when any part of the input is invalid or cut off. Ends at the first NUL.
std::wstring ConvertMbsToWcs(const std::string& bytes, const std::wstring& encoding);

// Guesses whether a text is UTF-8 rather than Windows-1251. The first byte is not looked at, and
// pure ASCII counts as not UTF-8, which loses nothing: it reads the same in both.
bool IsUTF8String(const char* text);

// Decodes a name or a keyboard's text, in the encoding that IsUTF8String guesses. Empty when the
// text is invalid in it.
std::wstring ConvertUTF8Input(const char* text);

}  // namespace quorvel
