// Base64 with the standard alphabet of RFC 4648, no line breaks.
#pragma once

#include <string>

namespace quorvel {

// The last group is padded with "=" to four characters.
std::string base64_encode(const std::string& raw);

// Never fails: decoding stops at the first "=" or foreign character, and what stood before it is
// the result. A last group of 2 or 3 characters gives 1 or 2 bytes, a lone character none.
std::string base64_decode(const std::string& text);

// The same under the names of their use. The wide forms go through UTF-8: the bytes are those of
// the text's UTF-8 form, and decoded bytes that are no UTF-8 are skipped.
std::string raw2Base64(const std::string& raw);
std::wstring raw2Base64(const std::wstring& raw);
std::string base642Raw(const std::string& text);
std::wstring base642Raw(const std::wstring& text);

}  // namespace quorvel
