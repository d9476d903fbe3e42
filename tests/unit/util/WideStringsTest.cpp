#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "util/WideStrings.h"

namespace quorvel {
namespace {

using namespace std::string_literals;

using ShortBuffer = std::unique_ptr<WCHAR_T[]>;
using WideBuffer = std::unique_ptr<wchar_t[]>;

TEST(LengthOfShortText, CountsUnitsBeforeTheFirstZero) {
  EXPECT_EQ(getLenShortWcharStr(u""), 0u);
  EXPECT_EQ(getLenShortWcharStr(u"Привет"), 6u);
  EXPECT_EQ(getLenShortWcharStr(u"ab\0cd"), 2u);
  EXPECT_EQ(getLenShortWcharStr(u"\U0001F600"), 2u);  // a surrogate pair
  EXPECT_EQ(getLenShortWcharStr(std::u16string(10000, u'x').c_str()), 10000u);
}

TEST(ToShortText, AllocatesTheMeasuredLength) {
  WCHAR_T* text = nullptr;
  EXPECT_EQ(convToShortWchar(&text, L"Привет"), 7u);
  const ShortBuffer owner(text);
  EXPECT_EQ(std::u16string(text, 7), u"Привет\0"s);
}

TEST(ToShortText, AnEmptyTextIsJustTheTerminator) {
  WCHAR_T* text = nullptr;
  EXPECT_EQ(convToShortWchar(&text, L""), 1u);
  const ShortBuffer owner(text);
  EXPECT_EQ(text[0], u'\0');
}

TEST(ToShortText, StaysWithinTheGivenBuffer) {
  std::u16string buffer = u"??????";
  WCHAR_T* destination = buffer.data();
  EXPECT_EQ(convToShortWchar(&destination, L"abc"), 4u);
  EXPECT_EQ(destination, buffer.data());
  EXPECT_EQ(buffer, u"abc\0??"s);
}

TEST(ToShortText, CopiesExactlyTheCountIncludingZeros) {
  WCHAR_T* text = nullptr;
  EXPECT_EQ(convToShortWchar(&text, L"ab\0cd", 5), 5u);
  const ShortBuffer owner(text);
  EXPECT_EQ(std::u16string(text, 5), u"ab\0cd"s);

  std::u16string buffer = u"????";
  WCHAR_T* destination = buffer.data();
  EXPECT_EQ(convToShortWchar(&destination, L"abc", 2), 2u);
  EXPECT_EQ(buffer, u"ab??");
}

TEST(ToShortText, KeepsTheLowSixteenBits) {
  const std::wstring source = {wchar_t(0x1F600), wchar_t(0xFFFF), wchar_t(0x10041), wchar_t(-1)};
  WCHAR_T* text = nullptr;
  convToShortWchar(&text, source.c_str(), 4);
  const ShortBuffer owner(text);
  EXPECT_EQ(std::u16string(text, 4),
            (std::u16string{char16_t(0xF600), char16_t(0xFFFF), u'A', char16_t(0xFFFF)}));
}

TEST(ToShortText, TakesALongText) {
  WCHAR_T* text = nullptr;
  EXPECT_EQ(convToShortWchar(&text, std::wstring(10000, L'Ж').c_str()), 10001u);
  const ShortBuffer owner(text);
  EXPECT_EQ(text, std::u16string(10000, u'Ж'));
}

TEST(FromShortText, AllocatesTheMeasuredLength) {
  wchar_t* text = nullptr;
  EXPECT_EQ(convFromShortWchar(&text, u"Привет"), 7u);
  const WideBuffer owner(text);
  EXPECT_EQ(std::wstring(text, 7), L"Привет\0"s);
}

TEST(FromShortText, AnEmptyTextIsJustTheTerminator) {
  wchar_t* text = nullptr;
  EXPECT_EQ(convFromShortWchar(&text, u""), 1u);
  const WideBuffer owner(text);
  EXPECT_EQ(text[0], L'\0');
}

TEST(FromShortText, StopsAtAZeroAndFillsTheRestWithZeros) {
  std::wstring buffer = L"????????";
  wchar_t* destination = buffer.data();
  EXPECT_EQ(convFromShortWchar(&destination, u"ab\0cd", 6), 6u);
  EXPECT_EQ(destination, buffer.data());
  EXPECT_EQ(buffer, L"ab\0\0\0\0??"s);
}

TEST(FromShortText, StaysWithinTheCount) {
  std::wstring buffer = L"????";
  wchar_t* destination = buffer.data();
  EXPECT_EQ(convFromShortWchar(&destination, u"abcdef", 3), 3u);
  EXPECT_EQ(buffer, L"abc?");
  EXPECT_EQ(convFromShortWchar(&destination, u"xyz", 1), 1u);
  EXPECT_EQ(buffer, L"xbc?");
}

TEST(FromShortText, CopiesTheFirstUnitEvenWhenItIsZero) {
  std::wstring buffer = L"????";
  wchar_t* destination = buffer.data();
  EXPECT_EQ(convFromShortWchar(&destination, u"\0bc", 3), 3u);
  EXPECT_EQ(buffer, L"\0bc?"s);
}

TEST(FromShortText, SurrogatesAreNotJoined) {
  EXPECT_EQ(convFromShortWchar(u"\U0001F600"), (std::wstring{wchar_t(0xD83D), wchar_t(0xDE00)}));
  EXPECT_EQ(convFromShortWchar(u"\uFFFF"), L"\uFFFF");
}

TEST(FromShortText, ANullTextGivesTheEmptyString) {
  EXPECT_EQ(convFromShortWchar(static_cast<const WCHAR_T*>(nullptr)), L"");
  EXPECT_EQ(convFromShortWchar(static_cast<const WCHAR_T*>(nullptr), 5), L"");
  EXPECT_EQ(convFromShortWchar(static_cast<const WCHAR_T*>(nullptr), 10000), L"");
  EXPECT_EQ(convFromShortWchar(u""), L"");
  EXPECT_EQ(convFromShortWchar(u"", 0), L"");
}

TEST(FromShortText, AStringHasExactlyTheGivenLength) {
  EXPECT_EQ(convFromShortWchar(u"ab\0cd", 5), L"ab\0\0\0"s);
  EXPECT_EQ(convFromShortWchar(u"abcdef", 3), L"abc");
  EXPECT_EQ(convFromShortWchar(u"a", 1), L"a");
  EXPECT_EQ(convFromShortWchar(u"", 1), L"\0"s);
}

TEST(FromShortText, ReadsNothingBeyondTheGivenLength) {
  // Without a terminator, so that looking for one reads beyond the allocation.
  const auto units = std::make_unique<WCHAR_T[]>(3);
  units[0] = units[1] = units[2] = u'x';
  EXPECT_EQ(convFromShortWchar(units.get(), 3), L"xxx");
}

TEST(FromShortText, ALengthOfZeroMeansUpToTheTerminator) {
  EXPECT_EQ(convFromShortWchar(u"Привет", 0), L"Привет");
  EXPECT_EQ(convFromShortWchar(u"ab\0cd", 0), L"ab");
}

TEST(FromShortText, TakesALongText) {
  const std::u16string text(10000, u'Ж');
  EXPECT_EQ(convFromShortWchar(text.c_str()), std::wstring(10000, L'Ж'));
  EXPECT_EQ(convFromShortWchar(text.c_str(), 10000), std::wstring(10000, L'Ж'));
}

TEST(FromShortText, EveryUnitKeepsItsValue) {
  std::u16string units;
  std::wstring characters;
  for (unsigned unit = 1; unit <= 0xFFFF; ++unit) {
    units += static_cast<char16_t>(unit);
    characters += static_cast<wchar_t>(unit);
  }
  EXPECT_TRUE(convFromShortWchar(units.c_str()) == characters);
  WCHAR_T* back = nullptr;
  convToShortWchar(&back, characters.c_str());
  const ShortBuffer owner(back);
  EXPECT_TRUE(back == units);
}

TEST(WcharWrapper, HoldsAWideTextInBothWidths) {
  const WcharWrapper wrapper(L"Привет");
  EXPECT_EQ(wrapper.wideText(), L"Привет"s);
  EXPECT_EQ(wrapper.shortText(), u"Привет"s);
}

TEST(WcharWrapper, HoldsAShortTextInBothWidths) {
  const WcharWrapper wrapper(u"Привет");
  EXPECT_EQ(wrapper.wideText(), L"Привет"s);
  EXPECT_EQ(wrapper.shortText(), u"Привет"s);
}

TEST(WcharWrapper, HoldsCopies) {
  std::wstring wide = L"abc";
  const WcharWrapper ofWide(wide.c_str());
  wide = L"xyz";
  EXPECT_EQ(ofWide.wideText(), L"abc"s);
  std::u16string units = u"abc";
  const WcharWrapper ofShort(units.c_str());
  units = u"xyz";
  EXPECT_EQ(ofShort.shortText(), u"abc"s);
}

TEST(WcharWrapper, HoldsTwoNullsForANullText) {
  const WcharWrapper ofWide(static_cast<const wchar_t*>(nullptr));
  EXPECT_EQ(ofWide.wideText(), nullptr);
  EXPECT_EQ(ofWide.shortText(), nullptr);
  const WcharWrapper ofShort(static_cast<const WCHAR_T*>(nullptr));
  EXPECT_EQ(ofShort.wideText(), nullptr);
  EXPECT_EQ(ofShort.shortText(), nullptr);
}

TEST(WcharWrapper, HoldsTwoEmptyTextsForAnEmptyText) {
  const WcharWrapper ofWide(L"");
  EXPECT_EQ(ofWide.wideText(), L""s);
  EXPECT_EQ(ofWide.shortText(), u""s);
  const WcharWrapper ofShort(u"");
  EXPECT_EQ(ofShort.wideText(), L""s);
  EXPECT_EQ(ofShort.shortText(), u""s);
}

TEST(WcharWrapper, IgnoresSurrogatePairs) {
  const WcharWrapper narrowed(L"\U0001F600");
  EXPECT_EQ(narrowed.shortText(), u"\uF600"s);
  const WcharWrapper widened(u"\U0001F600");
  EXPECT_EQ(widened.wideText(), (std::wstring{wchar_t(0xD83D), wchar_t(0xDE00)}));
}

TEST(WcharWrapper, MeasuresUpToTheFirstZero) {
  EXPECT_EQ(WcharWrapper::getStrLen(u""), 0u);
  EXPECT_EQ(WcharWrapper::getStrLen(u"ab\0cd"), 2u);
}

TEST(WcharWrapper, TakesALongText) {
  const WcharWrapper wrapper(std::wstring(10000, L'Ж').c_str());
  EXPECT_EQ(wrapper.shortText(), std::u16string(10000, u'Ж'));
}

}  // namespace
}  // namespace quorvel
