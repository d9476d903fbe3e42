#include "util/CodePages.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

#include "util/Handles.h"

namespace quorvel {
namespace {

// Lead bytes that Russian UTF-8 text is made of: the Latin-1 supplement, Cyrillic, and general
// punctuation.
constexpr std::array<std::uint8_t, 5> kUsualLeadBytes = {0xC2, 0xC3, 0xD0, 0xD1, 0xE2};

constexpr bool isContinuation(std::uint8_t byte) { return byte >= 0x80 && byte <= 0xBF; }

bool isSuspiciousLead(std::uint8_t byte) {
  return byte >= 0xC0 &&
         std::find(kUsualLeadBytes.begin(), kUsualLeadBytes.end(), byte) == kUsualLeadBytes.end();
}

// `code` is the encoding's name in iconv.
std::wstring decode(std::string bytes, const char* code) {
  const IconvDescriptor conversion("WCHAR_T", code);
  if (!conversion) return {};
  // No encoding here gives more characters than bytes, so one call takes the whole input, and the
  // last character stays the terminator.
  std::vector<wchar_t> characters(bytes.size() + 1);
  char* in = bytes.data();
  std::size_t inLeft = bytes.size();
  char* out = reinterpret_cast<char*>(characters.data());
  std::size_t outLeft = bytes.size() * sizeof(wchar_t);
  if (iconv(conversion.get(), &in, &inLeft, &out, &outLeft) == static_cast<std::size_t>(-1)) {
    return {};
  }
  return characters.data();
}

}  // namespace

std::wstring ConvertMbsToWcs(const std::string& bytes, const std::wstring& encoding) {
  return decode(bytes, encoding == kEncodingWindows1251 ? "CP1251" : "UTF-8");
}

bool IsUTF8String(const char* text) {
  if (*text == '\0') return false;
  int suspicious = 0;
  int continuations = 0;
  for (const char* at = text + 1; *at != '\0'; ++at) {
    const auto byte = static_cast<std::uint8_t>(*at);
    continuations += isContinuation(byte);
    suspicious += isSuspiciousLead(byte);
  }
  return suspicious < continuations;
}

std::wstring ConvertUTF8Input(const char* text) {
  return decode(text, IsUTF8String(text) ? "UTF-8" : "CP1251");
}

}  // namespace quorvel
