#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "devices/NonPrintableKeys.h"

namespace quorvel::NonPrintableKeys {
namespace {

const struct {
  int id;
  std::string shortName;
  std::wstring fullName;
  unsigned long keysym;
} kRows[] = {
    {-1, "", L"&lt;NONE&gt;", 0},
    {0, "'F1'", L"F1", 0xFFBE},
    {1, "'F2'", L"F2", 0xFFBF},
    {2, "'F3'", L"F3", 0xFFC0},
    {3, "'F4'", L"F4", 0xFFC1},
    {4, "'F5'", L"F5", 0xFFC2},
    {5, "'F6'", L"F6", 0xFFC3},
    {6, "'F7'", L"F7", 0xFFC4},
    {7, "'F8'", L"F8", 0xFFC5},
    {8, "'F9'", L"F9", 0xFFC6},
    {9, "'F10'", L"F10", 0xFFC7},
    {10, "'F11'", L"F11", 0xFFC8},
    {11, "'F12'", L"F12", 0xFFC9},
    {12, "'INSERT'", L"INSERT", 0xFF63},
    {13, "'DELETE'", L"DELETE", 0xFFFF},
    {14, "'HOME'", L"HOME", 0xFF50},
    {15, "'END'", L"END", 0xFF57},
    {16, "'PgUp'", L"PgUp", 0xFF55},
    {17, "'PgDn'", L"PgDn", 0xFF56},
    {18, "'CAPSLOCK'", L"CAPSLOCK", 0xFFE5},
    {19, "'RIGHT_ALT'", L"RIGHT_ALT", 0xFFEA},
    {20, "'CR(Numpad)'", L"NUMPAD_ENTER", 0xFF8D},
};

TEST(NonPrintableKeys, EveryKeyHasItsNamesAndKeysym) {
  for (const auto& row : kRows) {
    SCOPED_TRACE(testing::Message() << "key " << row.id);
    EXPECT_EQ(getKeyFullName(static_cast<KeyID>(row.id)), row.fullName);
    EXPECT_EQ(getKeyLinuxData(static_cast<KeyID>(row.id)), row.keysym);
    EXPECT_EQ(getKeyShortName(row.keysym), row.shortName);
  }
}

TEST(NonPrintableKeys, TheKeysAreNumbered) {
  EXPECT_EQ(kNoKey, -1);
  EXPECT_EQ(kF8, 7);
  EXPECT_EQ(kLastKey, 20);
}

TEST(NonPrintableKeys, OtherKeysymsHaveNoName) {
  for (unsigned long keysym = 1; keysym <= 0x1FFFF; ++keysym) {
    bool known = false;
    for (const auto& row : kRows) known = known || row.keysym == keysym;
    if (known) continue;
    ASSERT_EQ(getKeyShortName(keysym), "") << keysym;
  }
  EXPECT_EQ(getKeyShortName(0x61), "");
  EXPECT_EQ(getKeyShortName(ULONG_MAX), "");
}

TEST(NonPrintableKeys, NumbersOutsideTheTableHaveNothing) {
  // Twice: a look-up must not add an entry.
  for (const int id : {-2, 21, INT_MIN, INT_MAX, -2, 21}) {
    SCOPED_TRACE(testing::Message() << "key " << id);
    EXPECT_EQ(getKeyFullName(static_cast<KeyID>(id)), L"");
    EXPECT_EQ(getKeyLinuxData(static_cast<KeyID>(id)), 0u);
  }
}

}  // namespace
}  // namespace quorvel::NonPrintableKeys
