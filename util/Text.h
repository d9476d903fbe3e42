// Plain chores on text: blanks, replacing, case, UTF-8, the time. A `std::string` here is UTF-8
// where it meets a `std::wstring`, which is UTF-32.
#pragma once

#include <string>

namespace quorvel {

// Removes blanks at both ends of `text` and returns a copy of what is left. Blank is what the
// default-constructed locale calls space.
std::string trim(std::string& text);
std::wstring trim(std::wstring& text);

// The same on a copy.
std::string trimed(const std::string& text);
std::wstring trimed(const std::wstring& text);

// A copy of `text` with every `what` replaced by `with`, left to right, never overlapping and never
// looking at what was put in. An empty `what` replaces nothing.
std::string replace(const std::string& text, const std::string& what, const std::string& with);
std::wstring replace(const std::wstring& text, const std::wstring& what, const std::wstring& with);

// Lowered character by character by the default-constructed locale.
std::string str_tolower(const std::string& text);
std::wstring str_tolower(const std::wstring& text);

// To UTF-8; what is no code point is skipped. Three names of one conversion.
std::string wstr2str(const std::wstring& text);
std::string wstrtostr(const std::wstring& text);
std::string wba2ba(const std::wstring& text);

// From UTF-8; invalid sequences are skipped. Three names of one conversion.
std::wstring str2wstr(const std::string& text);
std::wstring strtowstr(const std::string& text);
std::wstring ba2wba(const std::string& text);

// A number in decimal.
std::wstring int_to_wstr(int number);

// The local time of now in a strftime format: 256 characters, the text and then zeros, meant to be
// read through c_str(). Empty when the text does not fit.
std::string getCurrentTimeString(const std::string& format);

}  // namespace quorvel
