// Small operations on text. Where a function converts between the two, a std::string is UTF-8 and a
// std::wstring UTF-32.
#pragma once

#include <string>

namespace quorvel {

// Removes blanks at both ends of `text` and returns a copy of the result. Blanks are the characters
// that the default-constructed locale classifies as space.
std::string trim(std::string& text);
std::wstring trim(std::wstring& text);

// Returns a trimmed copy.
std::string trimed(const std::string& text);
std::wstring trimed(const std::wstring& text);

// A copy of `text` with every occurrence of `what` replaced by `with`, from left to right and
// without searching the replacements. An empty `what` replaces nothing.
std::string replace(const std::string& text, const std::string& what, const std::string& with);
std::wstring replace(const std::wstring& text, const std::wstring& what, const std::wstring& with);

// A copy in lower case, character by character, by the default-constructed locale.
std::string str_tolower(const std::string& text);
std::wstring str_tolower(const std::wstring& text);

// To UTF-8, skipping invalid code points. Three names for one conversion.
std::string wstr2str(const std::wstring& text);
std::string wstrtostr(const std::wstring& text);
std::string wba2ba(const std::wstring& text);

// From UTF-8, skipping invalid sequences. Three names for one conversion.
std::wstring str2wstr(const std::string& text);
std::wstring strtowstr(const std::string& text);
std::wstring ba2wba(const std::string& text);

// A number in decimal.
std::wstring int_to_wstr(int number);

// The current local time in a strftime format. The string has 256 characters, padded with zeros;
// read it through c_str(). Empty when the text does not fit.
std::string getCurrentTimeString(const std::string& format);

}  // namespace quorvel
