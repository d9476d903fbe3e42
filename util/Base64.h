// Base64 with the standard alphabet of RFC 4648 and without line breaks.
#pragma once

#include <string>

namespace quorvel {

// Pads the last group with "=" to four characters.
std::string base64_encode(const std::string& raw);

// Decodes up to the first "=" or character outside the alphabet and ignores the rest; never fails.
// A last group of 2 or 3 characters gives 1 or 2 bytes, a single character none.
std::string base64_decode(const std::string& text);

// The same under other names. The wide forms encode the UTF-8 form of the text, and read the
// decoded bytes as UTF-8, skipping invalid sequences.
std::string raw2Base64(const std::string& raw);
std::wstring raw2Base64(const std::wstring& raw);
std::string base642Raw(const std::string& text);
std::wstring base642Raw(const std::wstring& text);

}  // namespace quorvel
