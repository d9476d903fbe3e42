// The driver methods, called the way a host calls them.
#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "tests/rig/HostCodes.h"
#include "tests/unit/addin/Component.h"

namespace quorvel {
namespace {

using rig::boolVariant;
using rig::doubleVariant;
using rig::FakeMemoryManager;
using rig::numberVariant;
using rig::sameBytes;
using rig::textIn;
using rig::textVariant;
using rig::untouchedVariant;
using rig::variantOfType;
using test::ComponentTest;

// The methods that neither open a window nor look for devices.
constexpr long kQuietMethods[] = {test::kGetVersion,
                                  test::kGetDescription,
                                  test::kGetLastError,
                                  test::kSetParameter,
                                  test::kOpen,
                                  test::kClose,
                                  test::kGetAdditionalActions,
                                  test::kDoAdditionalAction};

// A port that no machine has: opening it fails.
const tVariant kMissingPort = numberVariant(100129);

class DriverMethods : public ComponentTest {
 protected:
  DriverMethods() {
    // Without a display the test window cannot open and no keyboard is found.
    unsetenv("DISPLAY");
    connect();
    setParameter(u"Port", kMissingPort);
  }
};

TEST_F(DriverMethods, GetVersion) {
  EXPECT_TRUE(call(test::kGetVersion));
  EXPECT_EQ(textIn(ret_), u"9.0.9.2");
}

TEST_F(DriverMethods, GetVersionNeedsNoParameters) {
  EXPECT_TRUE(component_.CallAsFunc(test::kGetVersion, &ret_, nullptr, 0));
  EXPECT_EQ(textIn(ret_), u"9.0.9.2");
}

TEST_F(DriverMethods, GetDescriptionInRussian) {
  EXPECT_TRUE(call(test::kGetDescription));
  EXPECT_TRUE(resultFlag());
  EXPECT_EQ(textIn(params_[0]), u"Ostrak: Драйвер устройств ввода");
  EXPECT_EQ(textIn(params_[1]), u"Драйвер для подключения устройств ввода");
  EXPECT_EQ(textIn(params_[2]), u"СканерШтрихкода");
  EXPECT_EQ(params_[3].vt, rig::kTypeInt32);
  EXPECT_EQ(params_[3].intValue, 2004);
  EXPECT_EQ(params_[4].vt, rig::kTypeBool);
  EXPECT_EQ(params_[4].i8, 0);
  EXPECT_EQ(params_[5].vt, rig::kTypeBool);
  EXPECT_EQ(params_[5].i8, 1);
  EXPECT_EQ(textIn(params_[6]), u"https://support.ostrak.example/input-devices");
}

TEST_F(DriverMethods, GetDescriptionInEnglish) {
  AppSettings::setLocale(rig::kEnglishLocale);
  QuorvelNative english(L"InputDevice", L"Штрихкод");
  english.setMemManager(&memory_);
  EXPECT_TRUE(english.CallAsFunc(test::kGetDescription, &ret_, params_.data(), 7));
  EXPECT_EQ(textIn(params_[0]), u"Ostrak: Input device driver");
  EXPECT_EQ(textIn(params_[1]), u"Driver for input devices");
  EXPECT_EQ(textIn(params_[2]), u"СканерШтрихкода");
}

TEST_F(DriverMethods, GetDescriptionUsesTheComponentsLanguageNotTheProcessWideOne) {
  AppSettings::setLocale(rig::kEnglishLocale);
  EXPECT_TRUE(call(test::kGetDescription));
  EXPECT_EQ(textIn(params_[1]), u"Драйвер для подключения устройств ввода");

  QuorvelNative english(L"InputDevice", L"Штрихкод");
  english.setMemManager(&memory_);
  AppSettings::setLocale(rig::kRussianLocale);
  EXPECT_TRUE(english.CallAsFunc(test::kGetDescription, &ret_, params_.data(), 7));
  EXPECT_EQ(textIn(params_[1]), u"Driver for input devices");
  english.SetLocale(u"ru");
  EXPECT_TRUE(english.CallAsFunc(test::kGetDescription, &ret_, params_.data(), 7));
  EXPECT_EQ(textIn(params_[1]), u"Драйвер для подключения устройств ввода");
}

struct LastErrorText {
  unsigned locale;
  std::u16string text;
};

const LastErrorText kLastErrorTexts[] = {
    {rig::kRussianLocale, u"Ошибка подключения. Проверьте доступность устройства."},
    {rig::kEnglishLocale, u"Connection error. Check device availability."}};

TEST_F(DriverMethods, GetLastErrorUsesTheProcessWideLanguage) {
  for (const LastErrorText& row : kLastErrorTexts) {
    AppSettings::setLocale(row.locale);
    EXPECT_TRUE(call(test::kGetLastError));
    EXPECT_EQ(ret_.vt, rig::kTypeInt32);
    EXPECT_EQ(ret_.intValue, 1);
    EXPECT_EQ(textIn(params_[0]), row.text);
  }
}

TEST_F(DriverMethods, GetParametersGivesADocument) {
  EXPECT_TRUE(call(test::kGetParameters));
  EXPECT_TRUE(resultFlag());
  EXPECT_NE(textIn(params_[0]).find(u"<Settings>"), std::u16string::npos);
}

TEST_F(DriverMethods, SetParameterReportsWhetherTheNameIsKnown) {
  EXPECT_TRUE(setParameter(u"Speed", numberVariant(19200)));
  EXPECT_TRUE(setParameter(u"Speed", textVariant(u"19200")));
  EXPECT_FALSE(setParameter(u"speed", numberVariant(19200)));
  EXPECT_FALSE(setParameter(u"", numberVariant(19200)));
  EXPECT_FALSE(setParameter(std::u16string(10000, u'x').c_str(), numberVariant(1)));
}

TEST_F(DriverMethods, SetParameterTakesTheNameUpToItsGivenLength) {
  params_[0] = textVariant(u"SpeedyScanner", 5);
  params_[1] = numberVariant(19200);
  EXPECT_TRUE(callAgain(test::kSetParameter));
  EXPECT_TRUE(resultFlag());
  params_[0] = textVariant(u"Speed", 0);
  EXPECT_TRUE(callAgain(test::kSetParameter));
  EXPECT_TRUE(resultFlag());
}

TEST_F(DriverMethods, SetParameterTakesOnlyAWideStringAsName) {
  for (const unsigned type : rig::typeCodes()) {
    SCOPED_TRACE(testing::Message() << "type code " << type);
    params_[0] = textVariant(u"Speed");
    params_[0].vt = static_cast<std::uint16_t>(type);
    params_[1] = numberVariant(19200);
    EXPECT_TRUE(callAgain(test::kSetParameter));
    EXPECT_EQ(resultFlag(), type == rig::kTypeText);
  }
  for (const tVariant& name :
       {numberVariant(1), doubleVariant(1.1), boolVariant(true), numberVariant(INT_MIN)}) {
    params_[0] = name;
    EXPECT_TRUE(callAgain(test::kSetParameter));
    EXPECT_FALSE(resultFlag());
  }
}

TEST_F(DriverMethods, SetParameterRefusesANullName) {
  for (const std::uint32_t length : {0u, 5u, 10000u}) {
    params_[0] = textVariant(nullptr, length);
    params_[1] = numberVariant(19200);
    EXPECT_TRUE(callAgain(test::kSetParameter));
    EXPECT_FALSE(resultFlag());
  }
}

TEST_F(DriverMethods, SetParameterTakesValuesOfAnyTypeAndNullTexts) {
  const std::u16string longText(10000, u'x');
  for (const char16_t* const name :
       {u"Port", u"KeyboardDevice", u"DataBits", u"StopBit", u"Speed", u"Prefix", u"Suffix",
        u"Timeout", u"TimeoutCOM", u"COMEncoding", u"GSSymbolKey", u"LogFileFolder",
        u"EquipmentType", u"OutputDataType", u"IgnoreKeyboardState"}) {
    for (const unsigned type : rig::typeCodes()) {
      EXPECT_TRUE(setParameter(name, variantOfType(type)));
      // A string's pointer is followed, so only a real string may claim to be one.
      if (type != rig::kTypeText) {
        EXPECT_TRUE(setParameter(name, numberVariant(1, type)));
      }
    }
    EXPECT_TRUE(setParameter(name, textVariant(nullptr, 10000)));
    EXPECT_TRUE(setParameter(name, textVariant(longText.c_str())));
  }
}

TEST_F(DriverMethods, OpenOfAMissingPortFailsAndLeavesTheOutputUntouched) {
  ASSERT_FALSE(std::filesystem::exists("/dev/ttyUSB100000"));
  for (int attempt = 0; attempt < 3; ++attempt) {
    EXPECT_TRUE(call(test::kOpen));
    EXPECT_FALSE(resultFlag());
    EXPECT_TRUE(sameBytes(params_[0], untouchedVariant()));
  }
  EXPECT_TRUE(memory_.requests.empty());
}

TEST_F(DriverMethods, CloseRefusesUnknownIdentifiers) {
  const std::u16string longId(10000, u'x');
  EXPECT_FALSE(close(textVariant(u"InputDevice#1")));
  EXPECT_FALSE(close(textVariant(u"")));
  EXPECT_FALSE(close(textVariant(longId.c_str())));
  EXPECT_FALSE(close(textVariant(nullptr, 0)));
  EXPECT_FALSE(close(textVariant(nullptr, 13)));
  for (const unsigned type : rig::typeCodes()) {
    EXPECT_FALSE(close(numberVariant(1, type == rig::kTypeText ? rig::kTypeInt32 : type)))
        << "type code " << type;
  }
}

TEST_F(DriverMethods, DeviceTestAlwaysSucceedsWithTwoEmptyTexts) {
  EXPECT_TRUE(call(test::kDeviceTest));
  EXPECT_TRUE(resultFlag());
  EXPECT_EQ(textIn(params_[0]), u"");
  EXPECT_EQ(textIn(params_[1]), u"");
}

TEST_F(DriverMethods, ThereAreNoAdditionalActions) {
  EXPECT_TRUE(call(test::kGetAdditionalActions));
  EXPECT_TRUE(resultFlag());
  EXPECT_EQ(textIn(params_[0]), u"");
  EXPECT_FALSE(call(test::kDoAdditionalAction));
  EXPECT_TRUE(sameBytes(ret_, untouchedVariant()));
}

TEST_F(DriverMethods, TheParameterCountIsIgnored) {
  params_[0] = textVariant(u"Speed");
  params_[1] = numberVariant(9600);
  for (const long count : {0L, 2L, -1L, LONG_MIN, LONG_MAX}) {
    EXPECT_TRUE(component_.CallAsFunc(test::kSetParameter, &ret_, params_.data(), count));
    EXPECT_TRUE(resultFlag());
  }
}

TEST_F(DriverMethods, CallsWithNullPointersFail) {
  for (const long method : {-1L, 0L, 1L, 2L, 3L, 4L, 5L, 6L, 7L, 8L, 9L, 10L}) {
    SCOPED_TRACE(testing::Message() << "method " << method);
    EXPECT_FALSE(component_.CallAsFunc(method, nullptr, params_.data(), 7));
    EXPECT_FALSE(component_.CallAsFunc(method, nullptr, nullptr, 0));
    ret_ = untouchedVariant();
    if (method != test::kGetVersion) {
      EXPECT_FALSE(component_.CallAsFunc(method, &ret_, nullptr, 0));
      EXPECT_TRUE(sameBytes(ret_, untouchedVariant()));
    }
  }
}

TEST_F(DriverMethods, WithoutMemoryTextsAreNullAndOnlyGetVersionFails) {
  for (const auto answer :
       {FakeMemoryManager::Answer::kRefusal, FakeMemoryManager::Answer::kSuccessWithoutBlock}) {
    memory_.answer = answer;
    for (const long method : kQuietMethods) {
      SCOPED_TRACE(testing::Message() << "method " << method);
      params_.fill(numberVariant(0));
      const bool expected = method != test::kGetVersion && method != test::kDoAdditionalAction;
      EXPECT_EQ(callAgain(method), expected);
    }
    EXPECT_TRUE(call(test::kGetDescription));
    for (const int position : {0, 1, 2, 6}) {
      EXPECT_EQ(params_[static_cast<std::size_t>(position)].vt, rig::kTypeText);
      EXPECT_EQ(params_[static_cast<std::size_t>(position)].wide.text, nullptr);
    }
    EXPECT_EQ(params_[3].intValue, 2004);
    EXPECT_TRUE(call(test::kDeviceTest));
    EXPECT_TRUE(resultFlag());
    EXPECT_EQ(params_[0].wide.text, nullptr);
    EXPECT_TRUE(call(test::kGetParameters));
    EXPECT_TRUE(resultFlag());
    EXPECT_EQ(params_[0].wide.text, nullptr);
  }
}

TEST_F(DriverMethods, WithoutAMemoryManagerTextsAreNull) {
  component_.setMemManager(nullptr);
  EXPECT_FALSE(call(test::kGetVersion));
  EXPECT_TRUE(call(test::kGetLastError));
  EXPECT_EQ(ret_.intValue, 1);
  EXPECT_EQ(params_[0].vt, rig::kTypeText);
  EXPECT_EQ(params_[0].wide.text, nullptr);
}

TEST_F(DriverMethods, AnExceptionMakesTheCallFail) {
  memory_.answer = FakeMemoryManager::Answer::kException;
  for (const long method : {test::kGetVersion, test::kGetDescription, test::kGetLastError,
                            test::kDeviceTest, test::kGetAdditionalActions}) {
    EXPECT_FALSE(call(method)) << "method " << method;
  }
}

TEST_F(DriverMethods, GetLastErrorAnswersBeforeInit) {
  QuorvelNative fresh(L"InputDevice", L"Штрихкод");
  fresh.setMemManager(&memory_);
  for (const LastErrorText& row : kLastErrorTexts) {
    AppSettings::setLocale(row.locale);
    ret_ = untouchedVariant();
    EXPECT_TRUE(fresh.CallAsFunc(test::kGetLastError, &ret_, params_.data(), 1));
    EXPECT_EQ(ret_.vt, rig::kTypeInt32);
    EXPECT_EQ(ret_.intValue, 1);
    EXPECT_EQ(textIn(params_[0]), row.text);
  }
}

TEST_F(DriverMethods, BeforeInitNothingCanBeSetOrOpened) {
  QuorvelNative fresh(L"InputDevice", L"Штрихкод");
  const auto callFresh = [&](long method) {
    ret_ = untouchedVariant();
    return fresh.CallAsFunc(method, &ret_, params_.data(), 7);
  };
  fresh.setMemManager(&memory_);
  EXPECT_TRUE(callFresh(test::kGetVersion));
  EXPECT_TRUE(callFresh(test::kGetDescription));
  EXPECT_FALSE(callFresh(test::kGetParameters));
  params_[0] = textVariant(u"Speed");
  params_[1] = numberVariant(9600);
  EXPECT_TRUE(callFresh(test::kSetParameter));
  EXPECT_FALSE(resultFlag());
  EXPECT_TRUE(callFresh(test::kOpen));
  EXPECT_FALSE(resultFlag());
  params_[0] = textVariant(u"InputDevice#1");
  EXPECT_TRUE(callFresh(test::kClose));
  EXPECT_FALSE(resultFlag());
  EXPECT_TRUE(callFresh(test::kDeviceTest));
  EXPECT_TRUE(resultFlag());
  EXPECT_TRUE(callFresh(test::kGetAdditionalActions));
  EXPECT_FALSE(callFresh(test::kDoAdditionalAction));
}

}  // namespace
}  // namespace quorvel
