#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "addin/EventNames.h"
#include "tests/rig/HostCodes.h"

namespace quorvel {
namespace {

struct Names {
  std::wstring russian, english;
};

const Names kBarcodeNames = {L"Штрихкод", L"Barcode"};
const Names kBarcodeBase64Names = {L"ШтрихкодBase64", L"BarcodeBase64"};
const Names kTrackDataNames = {L"ДанныеКарты", L"TrackData"};
const Names kTrackDataBase64Names = {L"ДанныеКартыBase64", L"TrackDataBase64"};

const Names& namesOfKey(unsigned key) {
  switch (key) {
    case rig::kScanner | rig::kDataBase64:
      return kBarcodeBase64Names;
    case rig::kCardReader:
      return kTrackDataNames;
    case rig::kCardReader | rig::kDataBase64:
      return kTrackDataBase64Names;
    default:
      return kBarcodeNames;
  }
}

TEST(EventNames, SayEquipmentAndDataType) {
  const struct {
    unsigned equipment, dataType;
    Names names;
  } rows[] = {
      {rig::kScanner, rig::kDataText, kBarcodeNames},
      {rig::kScanner, rig::kDataHumanReadable, kBarcodeNames},
      {rig::kScanner, rig::kDataBase64, kBarcodeBase64Names},
      {rig::kCardReader, rig::kDataText, kTrackDataNames},
      {rig::kCardReader, rig::kDataHumanReadable, kBarcodeNames},
      {rig::kCardReader, rig::kDataBase64, kTrackDataBase64Names},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::Message() << row.equipment << ", " << row.dataType);
    EXPECT_EQ(eventNameOf(row.equipment, row.dataType, Language::kRussian), row.names.russian);
    EXPECT_EQ(eventNameOf(row.equipment, row.dataType, Language::kEnglish), row.names.english);
  }
}

TEST(EventNames, EveryOtherCombinationIsABarcode) {
  for (unsigned equipment = 0; equipment <= 130; ++equipment) {
    for (unsigned dataType = 0; dataType <= 40; ++dataType) {
      SCOPED_TRACE(testing::Message() << equipment << ", " << dataType);
      const Names& names = namesOfKey(equipment | dataType);
      ASSERT_EQ(eventNameOf(equipment, dataType, Language::kRussian), names.russian);
      ASSERT_EQ(eventNameOf(equipment, dataType, Language::kEnglish), names.english);
    }
  }
  for (const unsigned code : {unsigned{INT_MAX}, unsigned{INT_MAX} + 1, UINT_MAX}) {
    EXPECT_EQ(eventNameOf(code, rig::kDataText, Language::kEnglish), kBarcodeNames.english);
    EXPECT_EQ(eventNameOf(rig::kScanner, code, Language::kEnglish), kBarcodeNames.english);
  }
}

}  // namespace
}  // namespace quorvel
