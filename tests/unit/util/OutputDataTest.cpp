#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "util/OutputData.h"

namespace quorvel {
namespace {

// 31 32 33 1D D0 96, "123", a group separator and "Ж".
const std::wstring kScan = L"MTIzHdCW";

TEST(OutputData, CodesAreThoseOfTheParameter) {
  EXPECT_EQ(kText, 0u);
  EXPECT_EQ(kHumanReadable, 1u);
  EXPECT_EQ(kBase64, 2u);
}

TEST(OutputData, ConvertsAScanToEachForm) {
  EXPECT_EQ(outputData(kScan, kText), L"123\u001DЖ");
  EXPECT_EQ(outputData(kScan, kHumanReadable), L"123(029208150)");
  EXPECT_EQ(outputData(kScan, kBase64), kScan);
}

TEST(OutputData, AnUnknownCodeMeansText) {
  for (const unsigned code : {3u, 16u, unsigned{INT_MAX}, UINT_MAX}) {
    EXPECT_EQ(outputData(kScan, code), L"123\u001DЖ") << code;
  }
}

TEST(OutputData, AnEmptyScanStaysEmpty) {
  for (const unsigned code : {kText, kHumanReadable, kBase64}) {
    EXPECT_EQ(outputData(L"", code), L"") << code;
  }
}

TEST(OutputData, Base64IsNotDecoded) {
  EXPECT_EQ(outputData(L"not base64 at all", kBase64), L"not base64 at all");
}

}  // namespace
}  // namespace quorvel
