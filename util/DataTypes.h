// The data types: the forms in which the data of a scan is shown or delivered.
#pragma once

#include <string>

namespace quorvel {

inline constexpr unsigned kText = 0;
inline constexpr unsigned kHumanReadable = 1;
inline constexpr unsigned kBase64 = 2;

// A scan, given as the base64 text of its raw bytes, in the form of a data type; a number that is
// none means kText.
std::wstring inDataType(const std::wstring& base64, int dataType);

}  // namespace quorvel
