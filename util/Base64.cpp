#include "util/Base64.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "util/ScopedWipe.h"
#include "util/Text.h"

namespace quorvel {
namespace {

constexpr std::string_view kAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
static_assert(kAlphabet.size() == 64);

// Above the 24 bits of a group.
constexpr std::uint32_t kForeign = std::uint32_t{1} << 24;

// What each character adds to its group when it stands at one of the four places: its sextet there,
// or kForeign when it is outside the alphabet.
using Place = std::array<std::uint32_t, 256>;
constexpr std::array<Place, 4> kPlaces = [] {
  std::array<Place, 4> places{};
  for (std::size_t place = 0; place < places.size(); ++place) {
    places[place].fill(kForeign);
    for (std::size_t sextet = 0; sextet < kAlphabet.size(); ++sextet) {
      places[place][static_cast<std::uint8_t>(kAlphabet[sextet])] =
          static_cast<std::uint32_t>(sextet << (18 - 6 * place));
    }
  }
  return places;
}();

std::uint8_t codeOf(char character) { return static_cast<std::uint8_t>(character); }
std::uint32_t codeOf(wchar_t character) { return static_cast<std::uint32_t>(character); }

template <typename Character>
std::uint32_t partOf(Character character, std::size_t place) {
  const auto code = codeOf(character);
  return code < kPlaces[place].size() ? kPlaces[place][code] : kForeign;
}

void encodeGroup(const std::uint8_t (&bytes)[3], char* out) {
  const std::uint32_t group =
      std::uint32_t{bytes[0]} << 16 | std::uint32_t{bytes[1]} << 8 | std::uint32_t{bytes[2]};
  out[0] = kAlphabet[group >> 18];
  out[1] = kAlphabet[group >> 12 & 0x3F];
  out[2] = kAlphabet[group >> 6 & 0x3F];
  out[3] = kAlphabet[group & 0x3F];
}

// False for a group with a foreign character in it; nothing is written then. Inline, since a call
// for each group would take half as long again.
template <typename Character>
inline bool decodeGroup(const Character* in, char* out) {
  const std::uint32_t group =
      partOf(in[0], 0) | partOf(in[1], 1) | partOf(in[2], 2) | partOf(in[3], 3);
  if ((group & kForeign) != 0) return false;
  out[0] = static_cast<char>(group >> 16);
  out[1] = static_cast<char>(group >> 8);
  out[2] = static_cast<char>(group);
  return true;
}

template <typename Character>
std::string decode(std::basic_string_view<Character> text) {
  std::string raw(text.size() / 4 * 3 + 3, '\0');
  const Character* in = text.data();
  const Character* const end = in + text.size();
  char* out = raw.data();
  while (end - in >= 4 && decodeGroup(in, out)) in += 4, out += 3;

  char last[4] = {'A', 'A', 'A', 'A'};
  std::ptrdiff_t held = 0;
  while (in != end && partOf(*in, 0) != kForeign) last[held++] = static_cast<char>(*in++);
  decodeGroup(last, out);
  const std::ptrdiff_t lastBytes = std::max<std::ptrdiff_t>(held - 1, 0);
  raw.resize(static_cast<std::size_t>(out - raw.data() + lastBytes));
  return raw;
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

std::string base64_decode(const std::string& text) { return decode<char>(text); }

std::string raw2Base64(const std::string& raw) { return base64_encode(raw); }

std::wstring raw2Base64(const std::wstring& raw) { return str2wstr(base64_encode(wstr2str(raw))); }

std::string base642Raw(const std::string& text) { return base64_decode(text); }

std::wstring base642Raw(const std::wstring& text) {
  std::string raw = decode<wchar_t>(text);
  const ScopedWipe wipeRaw(raw);
  return str2wstr(raw);
}

}  // namespace quorvel
