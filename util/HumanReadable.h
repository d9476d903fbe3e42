// The human-readable form (HRS) of raw data: visible ASCII as it is, every run of other bytes as
// three-digit decimal codes in one pair of parentheses. "AB\r\n" reads "AB(013010)".
#pragma once

#include <string>

namespace quorvel {

// `length` bytes, or none when it is negative.
std::string raw2HRS(const char* bytes, int length);
std::string raw2HRS(const std::string& bytes);

// The bytes are those of the text's UTF-8 form, so a letter outside ASCII is coded byte by byte.
std::wstring raw2HRS(const std::wstring& text);
std::wstring raw2HRS(const wchar_t* text, int count);

// Reads the form back. Text without groups is returned unchanged; a group with codes must run to
// the end of the text without being closed, and each of its digits but the first begins another
// pass over those that follow. Everything else fails: the result is empty.
std::wstring hrs2Raw(const std::wstring& text);

// The same into a buffer of `capacity` characters: at most so many are written, and their number is
// returned. On failure the whole buffer is zeros and the result 0.
int hrs2Raw(wchar_t* buffer, const std::wstring& text, int capacity);

// Keeps the characters that have a visible one-byte form in the process locale.
std::wstring raw2Printable(const wchar_t* text, int count);
std::wstring raw2Printable(const std::wstring& text);

}  // namespace quorvel
