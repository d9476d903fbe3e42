#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "addin/EventNames.h"

namespace quorvel {
namespace {

struct Names {
  std::wstring russian, english;
};

const Names kBarcode = {L"Штрихкод", L"Barcode"};
const Names kBarcodeBase64 = {L"ШтрихкодBase64", L"BarcodeBase64"};
const Names kTrackData = {L"ДанныеКарты", L"TrackData"};
const Names kTrackDataBase64 = {L"ДанныеКартыBase64", L"TrackDataBase64"};

const Names& namesOf(int key) {
  switch (key) {
    case 18:
      return kBarcodeBase64;
    case 32:
      return kTrackData;
    case 34:
      return kTrackDataBase64;
    default:
      return kBarcode;
  }
}

TEST(EventNames, SayEquipmentAndDataType) {
  const struct {
    int equipment, dataType;
    Names names;
  } rows[] = {
      {16, 0, kBarcode},   {16, 1, kBarcode}, {16, 2, kBarcodeBase64},
      {32, 0, kTrackData}, {32, 1, kBarcode}, {32, 2, kTrackDataBase64},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::Message() << row.equipment << ", " << row.dataType);
    EXPECT_EQ(eventNameOf(row.equipment, row.dataType, 0), row.names.russian);
    EXPECT_EQ(eventNameOf(row.equipment, row.dataType, 1), row.names.english);
  }
}

TEST(EventNames, EveryOtherKeyIsABarcode) {
  for (int equipment = 0; equipment <= 130; ++equipment) {
    for (int dataType = 0; dataType <= 40; ++dataType) {
      const Names& names = namesOf(equipment | dataType);
      ASSERT_EQ(eventNameOf(equipment, dataType, 0), names.russian) << equipment << dataType;
      ASSERT_EQ(eventNameOf(equipment, dataType, 1), names.english) << equipment << dataType;
    }
  }
  for (const int odd : {-1, INT_MIN, INT_MAX}) {
    EXPECT_EQ(eventNameOf(odd, 0, 1), kBarcode.english);
    EXPECT_EQ(eventNameOf(16, odd, 1), kBarcode.english);
  }
}

TEST(EventNames, EveryOtherLanguageIsRussian) {
  for (const unsigned locale : {2u, 3u, 16u, UINT_MAX}) {
    EXPECT_EQ(eventNameOf(32, 2, locale), kTrackDataBase64.russian) << locale;
  }
}

}  // namespace
}  // namespace quorvel
