#include "util/SymbolNames.h"

#include <array>
#include <cstdint>
#include <string_view>

namespace quorvel {
namespace {

constexpr std::array<std::wstring_view, 33> kNames = {
    L"NUL", L"SOH", L"STX", L"ETX", L"EOT", L"ENQ", L"ACK", L"BEL", L"BS",  L"TAB", L"LF",
    L"VT",  L"FF",  L"CR",  L"SO",  L"SI",  L"DLE", L"DC1", L"DC2", L"DC3", L"DC4", L"NAK",
    L"SYN", L"ETB", L"CAN", L"EM",  L"SUB", L"ESC", L"FS",  L"GS",  L"RS",  L"US",  L"SPACE"};

constexpr std::uint32_t kDelete = 127;

// wchar_t is signed in this ABI.
std::uint32_t codePointOf(wchar_t symbol) { return static_cast<std::uint32_t>(symbol); }

}  // namespace

std::wstring GetSymbolName(wchar_t symbol) {
  const std::uint32_t code = codePointOf(symbol);
  if (code < kNames.size()) return std::wstring(kNames[code]);
  return code == kDelete ? L"DEL" : L"";
}

std::wstring FormatSymbolForDisplay(wchar_t symbol) {
  const std::wstring name = GetSymbolName(symbol);
  return name.empty() ? std::wstring(1, symbol) : L" '" + name + L"' ";
}

std::wstring FormatSymbolAsNumber(wchar_t symbol) { return std::to_wstring(codePointOf(symbol)); }

}  // namespace quorvel
