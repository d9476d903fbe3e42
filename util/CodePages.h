// Decoding device bytes and names into wide text.
#pragma once

#include <string>
#include <string_view>

namespace quorvel {

// The encodings that the settings offer.
inline constexpr std::wstring_view kEncodingUtf8 = L"UTF-8";
inline constexpr std::wstring_view kEncodingWindows1251 = L"Windows-1251";

// Decodes `bytes`, up to the first NUL, from the named encoding; any name but "Windows-1251" means
// UTF-8. Empty when any part of the input, even after a NUL, is invalid or cut off.
std::wstring ConvertMbsToWcs(const std::string& bytes, const std::wstring& encoding);

// Guesses whether a text is UTF-8 rather than Windows-1251. Ignores the first byte. False for pure
// ASCII, which reads the same in both.
bool IsUTF8String(const char* text);

// Decodes a device name or a keyboard's text in the encoding that IsUTF8String guesses. Empty when
// the text is invalid in that encoding.
std::wstring ConvertUTF8Input(const char* text);

}  // namespace quorvel
