#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "performer/AppSettings.h"
#include "tests/rig/HostCodes.h"
#include "tests/rig/Variants.h"
#include "tests/unit/performer/RestoredSettings.h"

namespace quorvel {
namespace {

using AppSettingsTest = test::RestoredSettings;

// Read during static initialization, before any test has changed the settings.
const struct {
  unsigned locale = AppSettings::locale();
  unsigned ioDataType = AppSettings::ioDataType();
  unsigned deviceType = AppSettings::deviceType();
} kAtLoadTime;

TEST_F(AppSettingsTest, HaveTheirInitialValues) {
  EXPECT_EQ(kAtLoadTime.locale, 0u);
  EXPECT_EQ(kAtLoadTime.ioDataType, rig::kDataText);
  EXPECT_EQ(kAtLoadTime.deviceType, rig::kScanner);
}

struct Setting {
  const char* name;
  unsigned (*get)();
  void (*set)(unsigned);
  unsigned last;  // the largest value that is accepted
};

const Setting kSettings[] = {
    {"locale", AppSettings::locale, AppSettings::setLocale, 1},
    {"ioDataType", AppSettings::ioDataType, AppSettings::setIODataType, 2},
    {"deviceType", AppSettings::deviceType, AppSettings::setDeviceType, 32},
};

TEST_F(AppSettingsTest, KeepEveryValueInRange) {
  for (const Setting& setting : kSettings) {
    for (unsigned value = 0; value <= setting.last; ++value) {
      setting.set(value);
      EXPECT_EQ(setting.get(), value) << setting.name;
    }
  }
}

TEST_F(AppSettingsTest, IgnoreValuesOutOfRange) {
  for (const Setting& setting : kSettings) {
    for (const unsigned kept : {0u, 1u}) {
      setting.set(kept);
      for (const unsigned value :
           {setting.last + 1, setting.last + 2, 0x100u, 0x80000000u, 0xFFFFFFFFu}) {
        setting.set(value);
        EXPECT_EQ(setting.get(), kept) << setting.name << " " << value;
      }
    }
  }
}

TEST_F(AppSettingsTest, DoNotAffectEachOther) {
  AppSettings::setLocale(rig::kEnglishLocale);
  EXPECT_EQ(AppSettings::ioDataType(), rig::kDataText);
  EXPECT_EQ(AppSettings::deviceType(), rig::kScanner);
  AppSettings::setIODataType(rig::kDataBase64);
  AppSettings::setDeviceType(rig::kCardReader);
  EXPECT_EQ(AppSettings::locale(), rig::kEnglishLocale);
  EXPECT_EQ(AppSettings::ioDataType(), rig::kDataBase64);
  EXPECT_EQ(AppSettings::deviceType(), rig::kCardReader);
}

TEST_F(AppSettingsTest, AnAbsentValueIsTheDefaultIncludingItsTypeCode) {
  const tVariant fallback = rig::untouchedVariant();
  EXPECT_TRUE(rig::sameBytes(AppSettings::value(L"absent", fallback), fallback));
  EXPECT_EQ(AppSettings::value(L"absent", rig::numberVariant(5)).vt, rig::kTypeInt32);
}

TEST_F(AppSettingsTest, AValueIsKeptBitByBit) {
  const tVariant value = rig::untouchedVariant();
  AppSettings::setValue(L"bits", value);
  EXPECT_TRUE(rig::sameBytes(AppSettings::value(L"bits", rig::numberVariant(0)), value));
}

TEST_F(AppSettingsTest, ALaterValueReplacesAnEarlierOne) {
  AppSettings::setValue(L"twice", rig::numberVariant(1));
  AppSettings::setValue(L"twice", rig::numberVariant(2));
  EXPECT_EQ(AppSettings::value(L"twice", rig::numberVariant(0)).intValue, 2);
  EXPECT_EQ(AppSettings::value(L"Twice", rig::numberVariant(0)).intValue, 0);
}

TEST_F(AppSettingsTest, OnlyThePointerOfAStringIsKept) {
  const std::u16string text = u"text";
  AppSettings::setValue(L"text", rig::textVariant(text.c_str()));
  const tVariant value = AppSettings::value(L"text", rig::numberVariant(0));
  EXPECT_EQ(value.wide.text, text.c_str());
  EXPECT_EQ(value.wide.length, 4u);
}

TEST_F(AppSettingsTest, MayBeUsedByManyThreads) {
  constexpr int kRounds = 2000;
  constexpr int kThreads = 4;
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([thread] {
      const std::wstring own = L"thread " + std::to_wstring(thread);
      for (int round = 0; round < kRounds; ++round) {
        const auto number = static_cast<unsigned>(round);
        AppSettings::setLocale(number % 3);
        AppSettings::setIODataType(number % 4);
        AppSettings::setDeviceType(number % 34);
        AppSettings::setValue(own, rig::numberVariant(round));
        AppSettings::setValue(L"common", rig::numberVariant(round));
        EXPECT_LE(AppSettings::locale(), 1u);
        EXPECT_LE(AppSettings::ioDataType(), 2u);
        EXPECT_LE(AppSettings::deviceType(), 32u);
        EXPECT_EQ(AppSettings::value(own, rig::numberVariant(-1)).intValue, round);
        EXPECT_GE(AppSettings::value(L"common", rig::numberVariant(-1)).intValue, 0);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(AppSettings::value(L"common", rig::numberVariant(-1)).intValue, kRounds - 1);
}

}  // namespace
}  // namespace quorvel
