#include "util/Base64.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "util/Text.h"

namespace quorvel {
namespace {

constexpr std::string_view kAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
static_assert(kAlphabet.size() == 64);

constexpr std::uint8_t kForeign = 0x80;

// The sextet of each character, kForeign for one outside the alphabet.
constexpr std::array<std::uint8_t, 256> kSextets = [] {
  std::array<std::uint8_t, 256> sextets{};
  sextets.fill(kForeign);
  for (std::size_t i = 0; i < kAlphabet.size(); ++i) {
    sextets[static_cast<std::uint8_t>(kAlphabet[i])] = static_cast<std::uint8_t>(i);
  }
  return sextets;
}();

std::uint8_t sextetOf(char character) { return kSextets[static_cast<std::uint8_t>(character)]; }

void encodeGroup(const std::uint8_t (&bytes)[3], char* out) {
  const std::uint32_t group =
      std::uint32_t{bytes[0]} << 16 | std::uint32_t{bytes[1]} << 8 | std::uint32_t{bytes[2]};
  out[0] = kAlphabet[group >> 18];
  out[1] = kAlphabet[group >> 12 & 0x3F];
  out[2] = kAlphabet[group >> 6 & 0x3F];
  out[3] = kAlphabet[group & 0x3F];
}

// False for a group with a foreign character in it; nothing is written then.
bool decodeGroup(const char* in, char* out) {
  const std::uint32_t a = sextetOf(in[0]);
  const std::uint32_t b = sextetOf(in[1]);
  const std::uint32_t c = sextetOf(in[2]);
  const std::uint32_t d = sextetOf(in[3]);
  if (((a | b | c | d) & kForeign) != 0) return false;
  const std::uint32_t group = a << 18 | b << 12 | c << 6 | d;
  out[0] = static_cast<char>(group >> 16);
  out[1] = static_cast<char>(group >> 8);
  out[2] = static_cast<char>(group);
  return true;
}

}  // namespace

std::string base64_encode(const std::string& raw) {
  std::string text((raw.size() + 2) / 3 * 4, '=');
  const auto* in = reinterpret_cast<const std::uint8_t*>(raw.data());
  const std::uint8_t* const end = in + raw.size();
  char* out = text.data();
  for (; end - in >= 3; in += 3, out += 4) encodeGroup({in[0], in[1], in[2]}, out);
  if (in != end) {
    char last[4];
    encodeGroup({in[0], end - in == 2 ? in[1] : std::uint8_t{0}, 0}, last);
    std::copy_n(last, end - in + 1, out);
  }
  return text;
}

std::string base64_decode(const std::string& text) {
  std::string raw(text.size() / 4 * 3 + 3, '\0');
  const char* in = text.data();
  const char* const end = in + text.size();
  char* out = raw.data();
  while (end - in >= 4 && decodeGroup(in, out)) in += 4, out += 3;

  char last[4] = {'A', 'A', 'A', 'A'};
  std::ptrdiff_t held = 0;
  while (in != end && sextetOf(*in) != kForeign) last[held++] = *in++;
  decodeGroup(last, out);
  const std::ptrdiff_t lastBytes = std::max<std::ptrdiff_t>(held - 1, 0);
  raw.resize(static_cast<std::size_t>(out - raw.data() + lastBytes));
  return raw;
}

std::string raw2Base64(const std::string& raw) { return base64_encode(raw); }

std::wstring raw2Base64(const std::wstring& raw) { return str2wstr(base64_encode(wstr2str(raw))); }

std::string base642Raw(const std::string& text) { return base64_decode(text); }

std::wstring base642Raw(const std::wstring& text) {
  return str2wstr(base64_decode(wstr2str(text)));
}

}  // namespace quorvel
