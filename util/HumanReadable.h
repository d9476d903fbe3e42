// The human-readable form (HRS) of raw data: visible ASCII characters stay as they are, a run of
// other bytes becomes their three-digit decimal codes in parentheses. "AB\r\n" reads "AB(013010)".
#pragma once

#include <string>

namespace quorvel {

// Converts `length` bytes. A negative length counts as 0.
std::string raw2HRS(const char* bytes, int length);
std::string raw2HRS(const std::string& bytes);

// Converts the UTF-8 form of the text: a non-ASCII letter becomes the codes of its bytes.
std::wstring raw2HRS(const std::wstring& text);
std::wstring raw2HRS(const wchar_t* text, int count);

// Reads the form back, with two peculiarities. A closing parenthesis after digits is an error, so
// only a group that runs to the end of the text is read; and its digits are read again from the
// second one on, from the third one on, and so forth. The result is empty on an error.
std::wstring hrs2Raw(const std::wstring& text);

// The same into a buffer of `capacity` characters. Returns the number of characters written. On an
// error fills the whole buffer with zeros and returns 0.
int hrs2Raw(wchar_t* buffer, const std::wstring& text, int capacity);

// Drops every character without a visible one-byte form in the process locale.
std::wstring raw2Printable(const wchar_t* text, int count);
std::wstring raw2Printable(const std::wstring& text);

}  // namespace quorvel
