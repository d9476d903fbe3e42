#include <gtest/gtest.h>

#include <string>

#include "dialog/RowTexts.h"
#include "util/Base64.h"
#include "util/OutputData.h"

namespace quorvel {
namespace {

std::wstring base64Of(const std::string& raw) {
  const std::string text = raw2Base64(raw);
  return {text.begin(), text.end()};
}

std::string repeated(const std::string& text, std::size_t times) {
  std::string result;
  while (times-- > 0) result += text;
  return result;
}

TEST(SourceCell, IsTheNameAndAColon) {
  EXPECT_EQ(sourceCell(L"ACM1"), "ACM1:");
  EXPECT_EQ(sourceCell(L"Сканер"), "Сканер:");
  EXPECT_EQ(sourceCell(L""), ":");
}

TEST(SourceCell, KeepsItsColonWhenTheNameIsCut) {
  EXPECT_EQ(sourceCell(std::wstring(1022, L'x')), std::string(1022, 'x') + ':');
  EXPECT_EQ(sourceCell(std::wstring(1023, L'x')), std::string(1022, 'x') + ':');
  EXPECT_EQ(sourceCell(std::wstring(5000, L'Ж')), repeated("Ж", 511) + ":");
}

TEST(DataCell, ShowsTheTextWithControlCharactersByName) {
  EXPECT_EQ(dataCell(base64Of("A B\x1D\r"), kText), "A 'SPACE' B 'GS'  'CR' ");
  EXPECT_EQ(dataCell(base64Of("Ж\x7F"), kText), "Ж 'DEL' ");
}

TEST(DataCell, ShowsTheHumanReadableForm) {
  EXPECT_EQ(dataCell(base64Of("\x02"
                              "123\r\n"),
                     kHumanReadable),
            "(002)123(013010)");
}

TEST(DataCell, ShowsBase64AsItCame) { EXPECT_EQ(dataCell(L"MTIzDQ==", kBase64), "MTIzDQ=="); }

TEST(DataCell, TakesAnUnknownTypeForText) {
  EXPECT_EQ(dataCell(L"MTIzDQ==", 3), "123 'CR' ");
  EXPECT_EQ(dataCell(L"MTIzDQ==", -1), "123 'CR' ");
}

TEST(DataCell, HoldsUpTo1023Bytes) {
  const std::string whole(1023, 'x');
  EXPECT_EQ(dataCell(base64Of(whole), kText), whole);
  EXPECT_EQ(dataCell(base64Of(whole + "x"), kText), whole);
  EXPECT_EQ(dataCell(base64Of(std::string(100'000, 'x')), kText), whole);
}

TEST(DataCell, IsCutAfterAWholeCharacter) {
  EXPECT_EQ(dataCell(base64Of(repeated("Ж", 600)), kText), repeated("Ж", 511));
  EXPECT_EQ(dataCell(base64Of("x" + repeated("Ж", 600)), kText), "x" + repeated("Ж", 511));
  EXPECT_EQ(dataCell(base64Of(repeated("😀", 300)), kText), repeated("😀", 255));
}

TEST(DataCell, SkipsInvalidUtf8) {
  EXPECT_EQ(dataCell(base64Of("a\xFF\xC0z"), kText), "az");
  EXPECT_EQ(dataCell(base64Of("\xFF"), kText), "");
}

TEST(CutToBytes, KeepsWhatFits) {
  EXPECT_EQ(cutToBytes("", 0), "");
  EXPECT_EQ(cutToBytes("abc", 3), "abc");
  EXPECT_EQ(cutToBytes("abc", 2), "ab");
}

TEST(CutToBytes, NeverCutsACharacter) {
  EXPECT_EQ(cutToBytes("aЖ", 3), "aЖ");
  EXPECT_EQ(cutToBytes("aЖ", 2), "a");
  EXPECT_EQ(cutToBytes("😀b", 4), "😀");
  EXPECT_EQ(cutToBytes("😀b", 3), "");
  EXPECT_EQ(cutToBytes("😀b", 0), "");
}

}  // namespace
}  // namespace quorvel
