#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "util/DataTypes.h"

namespace quorvel {
namespace {

// 31 32 33 1D D0 96, "123", a group separator and "Ж".
const std::wstring kScan = L"MTIzHdCW";

TEST(DataTypes, HaveTheNumbersOfTheSettings) {
  EXPECT_EQ(kText, 0u);
  EXPECT_EQ(kHumanReadable, 1u);
  EXPECT_EQ(kBase64, 2u);
}

TEST(DataTypes, AScanIsGivenInEachForm) {
  EXPECT_EQ(inDataType(kScan, 0), L"123\u001DЖ");
  EXPECT_EQ(inDataType(kScan, 1), L"123(029208150)");
  EXPECT_EQ(inDataType(kScan, 2), kScan);
}

TEST(DataTypes, ANumberThatIsNoneMeansText) {
  for (const int type : {3, 16, -1, INT_MIN, INT_MAX}) {
    EXPECT_EQ(inDataType(kScan, type), L"123\u001DЖ") << type;
  }
}

TEST(DataTypes, AnEmptyScanIsEmptyInEveryForm) {
  for (const int type : {0, 1, 2}) EXPECT_EQ(inDataType(L"", type), L"") << type;
}

TEST(DataTypes, Base64IsPassedOnUnread) {
  EXPECT_EQ(inDataType(L"no base64 at all", 2), L"no base64 at all");
}

}  // namespace
}  // namespace quorvel
