#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "util/SymbolNames.h"

namespace quorvel {
namespace {

const struct {
  wchar_t code;
  std::wstring name;
  std::wstring number;
} kNamed[] = {
    {0, L"NUL", L"0"},     {1, L"SOH", L"1"},     {2, L"STX", L"2"},   {3, L"ETX", L"3"},
    {4, L"EOT", L"4"},     {5, L"ENQ", L"5"},     {6, L"ACK", L"6"},   {7, L"BEL", L"7"},
    {8, L"BS", L"8"},      {9, L"TAB", L"9"},     {10, L"LF", L"10"},  {11, L"VT", L"11"},
    {12, L"FF", L"12"},    {13, L"CR", L"13"},    {14, L"SO", L"14"},  {15, L"SI", L"15"},
    {16, L"DLE", L"16"},   {17, L"DC1", L"17"},   {18, L"DC2", L"18"}, {19, L"DC3", L"19"},
    {20, L"DC4", L"20"},   {21, L"NAK", L"21"},   {22, L"SYN", L"22"}, {23, L"ETB", L"23"},
    {24, L"CAN", L"24"},   {25, L"EM", L"25"},    {26, L"SUB", L"26"}, {27, L"ESC", L"27"},
    {28, L"FS", L"28"},    {29, L"GS", L"29"},    {30, L"RS", L"30"},  {31, L"US", L"31"},
    {32, L"SPACE", L"32"}, {127, L"DEL", L"127"},
};

TEST(SymbolNames, ControlCharactersHaveTheirNames) {
  for (const auto& row : kNamed) {
    SCOPED_TRACE(testing::Message() << "code " << static_cast<int>(row.code));
    EXPECT_EQ(GetSymbolName(row.code), row.name);
    EXPECT_EQ(FormatSymbolForDisplay(row.code), L" '" + row.name + L"' ");
    EXPECT_EQ(FormatSymbolAsNumber(row.code), row.number);
  }
}

TEST(SymbolNames, OtherCharactersHaveNoNameAndAreShownAsThemselves) {
  for (wchar_t code = 33; code < 0x600; ++code) {
    if (code == 127) continue;
    SCOPED_TRACE(testing::Message() << "code " << static_cast<int>(code));
    EXPECT_EQ(GetSymbolName(code), L"");
    EXPECT_EQ(FormatSymbolForDisplay(code), std::wstring(1, code));
  }
  EXPECT_EQ(FormatSymbolForDisplay(65), L"A");
}

TEST(SymbolNames, CodesBeyondUnicodeHaveNoName) {
  for (const wchar_t code : {std::numeric_limits<wchar_t>::min(), static_cast<wchar_t>(-1),
                             std::numeric_limits<wchar_t>::max(), wchar_t{0x110000}}) {
    EXPECT_EQ(GetSymbolName(code), L"") << static_cast<int>(code);
    EXPECT_EQ(FormatSymbolForDisplay(code), std::wstring(1, code)) << static_cast<int>(code);
  }
}

TEST(SymbolNames, NumbersAreUnsignedAndUnpadded) {
  EXPECT_EQ(FormatSymbolAsNumber(L'Ж'), L"1046");
  EXPECT_EQ(FormatSymbolAsNumber(0x10FFFF), L"1114111");
  EXPECT_EQ(FormatSymbolAsNumber(static_cast<wchar_t>(-1)), L"4294967295");
}

}  // namespace
}  // namespace quorvel
