// The forms in which the data of a scan is delivered and shown.
#pragma once

#include <string>

namespace quorvel {

// Codes of the OutputDataType parameter.
inline constexpr unsigned kText = 0;
inline constexpr unsigned kHumanReadable = 1;
inline constexpr unsigned kBase64 = 2;

// Converts a scan from base64, the form in which devices report it, to the form with the given
// code. An unknown code means text.
std::wstring outputData(const std::wstring& base64, unsigned outputDataType);

}  // namespace quorvel
