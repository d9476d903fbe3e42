#include <gtest/gtest.h>

#include <atomic>
#include <climits>
#include <initializer_list>
#include <string>
#include <thread>
#include <vector>

#include "addin/QuorvelNative.h"
#include "tests/rig/HostCodes.h"
#include "tests/unit/addin/Component.h"

namespace quorvel {
namespace {

using rig::Event;
using rig::FakeMemoryManager;
using rig::kCardReader;
using rig::kDataBase64;
using rig::kDataHumanReadable;
using rig::kDataText;
using rig::kEnglishLocale;
using rig::kRussianLocale;
using rig::kScanner;
using test::ComponentTest;

constexpr long kOddNumbers[] = {-1, 10, 11, INT_MIN, INT_MAX, LONG_MIN, LONG_MAX};

const struct {
  std::u16string english, russian;
  long parameters;
} kMethodRows[] = {
    {u"GetVersion", u"ПолучитьНомерВерсии", 0},
    {u"GetDescription", u"ПолучитьОписание", 7},
    {u"GetLastError", u"ПолучитьОшибку", 1},
    {u"GetParameters", u"ПолучитьПараметры", 1},
    {u"SetParameter", u"УстановитьПараметр", 2},
    {u"Open", u"Подключить", 1},
    {u"Close", u"Отключить", 1},
    {u"DeviceTest", u"ТестУстройства", 2},
    {u"GetAdditionalActions", u"ПолучитьДополнительныеДействия", 1},
    {u"DoAdditionalAction", u"ВыполнитьДополнительноеДействие", 1},
};

TEST_F(ComponentTest, InitAsksForAQueueOf4096Events) {
  EXPECT_TRUE(component_.Init(&connection_));
  EXPECT_EQ(connection_.depths, std::vector<long>{4096});
  EXPECT_EQ(connection_.reservedCalls, 0);
}

TEST_F(ComponentTest, InitReturnsTheHostsAnswer) {
  connection_.takesDepth = false;
  EXPECT_FALSE(component_.Init(&connection_));
}

TEST_F(ComponentTest, InitWithoutAConnectionFails) {
  EXPECT_FALSE(component_.Init(nullptr));
  component_.OnInput(L"InputDevice#1", kScanner, kDataText, L"MTIz");
}

TEST_F(ComponentTest, InitMayBeCalledAgain) {
  rig::FakeConnection other;
  EXPECT_TRUE(component_.Init(&connection_));
  EXPECT_TRUE(component_.Init(&other));
  component_.OnInput(L"id", kScanner, kDataText, L"MTIz");
  EXPECT_TRUE(connection_.events().empty());
  EXPECT_EQ(other.events().size(), 1u);
  EXPECT_TRUE(component_.Init(&connection_));
  EXPECT_EQ(connection_.depths.size(), 2u);
}

TEST_F(ComponentTest, ALaterInitWithoutAConnectionOnlyStopsEvents) {
  connect();
  EXPECT_FALSE(component_.Init(nullptr));
  component_.OnInput(L"id", kScanner, kDataText, L"MTIz");
  EXPECT_TRUE(connection_.events().empty());
  EXPECT_TRUE(setParameter(u"Speed", rig::numberVariant(9600)));
  EXPECT_TRUE(component_.Init(&connection_));
  component_.OnInput(L"id", kScanner, kDataText, L"MTIz");
  EXPECT_EQ(connection_.events().size(), 1u);
}

TEST_F(ComponentTest, InitThrowsNothing) {
  connection_.throwsOnDepth = true;
  EXPECT_FALSE(component_.Init(&connection_));
}

TEST_F(ComponentTest, ANullMemoryManagerIsReportedAsFailure) {
  EXPECT_TRUE(component_.setMemManager(&memory_));
  EXPECT_FALSE(component_.setMemManager(nullptr));
  EXPECT_EQ(component_.GetMethodName(0, 0), nullptr);
}

TEST_F(ComponentTest, ReportsInterfaceRevision2004) { EXPECT_EQ(component_.GetInfo(), 2004); }

TEST_F(ComponentTest, DoneDoesNothing) {
  component_.Done();
  connect();
  component_.Done();
  EXPECT_TRUE(setParameter(u"Speed", rig::numberVariant(9600)));
  component_.OnInput(L"id", kScanner, kDataText, L"MTIz");
  EXPECT_EQ(connection_.events().size(), 1u);
}

TEST_F(ComponentTest, RegistersUnderItsExtensionName) {
  connect();
  WCHAR_T* name = nullptr;
  EXPECT_TRUE(component_.RegisterExtensionAs(&name));
  EXPECT_EQ(std::u16string(name), u"InputDevice");
  EXPECT_EQ(memory_.requests, std::vector<unsigned long>{24});
}

TEST_F(ComponentTest, DoesNotRegisterWithoutMemory) {
  WCHAR_T* name = nullptr;
  EXPECT_FALSE(component_.RegisterExtensionAs(&name));
  EXPECT_EQ(name, nullptr);
  component_.setMemManager(&memory_);
  for (const auto answer :
       {FakeMemoryManager::Answer::kRefusal, FakeMemoryManager::Answer::kSuccessWithoutBlock,
        FakeMemoryManager::Answer::kException}) {
    memory_.answer = answer;
    EXPECT_FALSE(component_.RegisterExtensionAs(&name));
    EXPECT_EQ(name, nullptr);
  }
  EXPECT_FALSE(component_.RegisterExtensionAs(nullptr));
}

TEST_F(ComponentTest, HasNoProperties) {
  connect();
  EXPECT_EQ(component_.GetNProps(), 0);
  EXPECT_EQ(component_.FindProp(u"Open"), -1);
  EXPECT_EQ(component_.FindProp(u""), -1);
  EXPECT_EQ(component_.FindProp(nullptr), -1);
  for (const long number : {0L, 1L, -1L, LONG_MIN, LONG_MAX}) {
    tVariant value = rig::untouchedVariant();
    EXPECT_EQ(component_.GetPropName(number, 0), nullptr);
    EXPECT_EQ(component_.GetPropName(number, -1), nullptr);
    EXPECT_FALSE(component_.GetPropVal(number, &value));
    EXPECT_FALSE(component_.GetPropVal(number, nullptr));
    EXPECT_FALSE(component_.SetPropVal(number, &value));
    EXPECT_FALSE(component_.SetPropVal(number, nullptr));
    EXPECT_FALSE(component_.IsPropReadable(number));
    EXPECT_FALSE(component_.IsPropWritable(number));
    EXPECT_TRUE(rig::sameBytes(value, rig::untouchedVariant()));
  }
}

TEST_F(ComponentTest, HasTenMethodsWithTwoNamesEach) {
  connect();
  EXPECT_EQ(component_.GetNMethods(), 10);
  for (long number = 0; number < 10; ++number) {
    SCOPED_TRACE(testing::Message() << "method " << number);
    const auto& row = kMethodRows[number];
    EXPECT_EQ(component_.FindMethod(row.english.c_str()), number);
    EXPECT_EQ(component_.FindMethod(row.russian.c_str()), number);
    EXPECT_EQ(component_.GetMethodName(number, 0), row.english);
    EXPECT_EQ(component_.GetMethodName(number, 1), row.russian);
    EXPECT_EQ(component_.GetNParams(number), row.parameters);
    EXPECT_TRUE(component_.HasRetVal(number));
  }
}

TEST_F(ComponentTest, MethodNamesAreExact) {
  const std::u16string longName(10000, u'x');
  for (const char16_t* const name : {u"open", u"OPEN", u"Ope", u" Open", u"Open ", u"Opened", u"",
                                     u"подключить", u"Подключит", longName.c_str()}) {
    EXPECT_EQ(component_.FindMethod(name), -1) << testing::PrintToString(name);
  }
  EXPECT_EQ(component_.FindMethod(nullptr), -1);
}

TEST_F(ComponentTest, OtherNumbersAreNotMethods) {
  connect();
  for (const long number : kOddNumbers) {
    SCOPED_TRACE(testing::Message() << "method " << number);
    EXPECT_EQ(component_.GetMethodName(number, 0), nullptr);
    EXPECT_EQ(component_.GetMethodName(number, 1), nullptr);
    EXPECT_EQ(component_.GetNParams(number), 0);
    EXPECT_TRUE(component_.HasRetVal(number));
    EXPECT_FALSE(call(number));
    EXPECT_TRUE(rig::sameBytes(ret_, rig::untouchedVariant()));
  }
  EXPECT_TRUE(memory_.requests.empty());
}

TEST_F(ComponentTest, MethodNamesHaveTwoLanguages) {
  connect();
  for (const long language : {2L, 3L, -1L, LONG_MIN, LONG_MAX}) {
    for (long number = 0; number < 10; ++number) {
      EXPECT_EQ(component_.GetMethodName(number, language), nullptr) << language;
    }
  }
}

TEST_F(ComponentTest, MethodNamesNeedTheHostsMemory) {
  EXPECT_EQ(component_.GetMethodName(5, 0), nullptr);
  component_.setMemManager(&memory_);
  for (const auto answer :
       {FakeMemoryManager::Answer::kRefusal, FakeMemoryManager::Answer::kSuccessWithoutBlock,
        FakeMemoryManager::Answer::kException}) {
    memory_.answer = answer;
    EXPECT_EQ(component_.GetMethodName(5, 0), nullptr);
  }
}

TEST_F(ComponentTest, NoParameterHasADefault) {
  for (const long number : {0L, 4L, 9L, 10L, -1L, LONG_MIN, LONG_MAX}) {
    for (const long parameter : {0L, 1L, -1L, LONG_MAX}) {
      tVariant value = rig::untouchedVariant();
      EXPECT_FALSE(component_.GetParamDefValue(number, parameter, &value));
      EXPECT_EQ(value.vt, rig::kTypeEmpty);
      EXPECT_FALSE(component_.GetParamDefValue(number, parameter, nullptr));
    }
  }
}

TEST_F(ComponentTest, NoMethodCanBeCalledAsAProcedure) {
  connect();
  for (long number = -1; number <= 10; ++number) {
    params_.fill(rig::untouchedVariant());
    EXPECT_FALSE(component_.CallAsProc(number, params_.data(), 7));
    EXPECT_FALSE(component_.CallAsProc(number, nullptr, 0));
    EXPECT_TRUE(rig::sameBytes(params_[0], rig::untouchedVariant()));
  }
}

struct LocaleRow {
  const char16_t* name;
  bool russian;
};

const LocaleRow kLocales[] = {
    {u"ru", true},     {u"RU", true},      {u"ru_RU", true}, {u"ru_RU.UTF-8", true},
    {u"rus", true},    {u"Russian", true}, {u"be_RU", true}, {u"xxruxx", true},
    {u"en", false},    {u"en_US", false},  {u"r u", false},  {u"", false},
    {u"de_DE", false}, {u"ur", false},     {u"ру", false},
};

TEST_F(ComponentTest, ALocaleWithRuInItIsRussian) {
  for (const LocaleRow& row : kLocales) {
    AppSettings::setLocale(kEnglishLocale);
    QuorvelNative english(L"InputDevice", L"Штрихкод");
    english.SetLocale(row.name);
    EXPECT_EQ(AppSettings::locale(), row.russian ? kRussianLocale : kEnglishLocale)
        << testing::PrintToString(row.name);
  }
}

TEST_F(ComponentTest, OnceRussianStaysRussian) {
  for (const LocaleRow& row : kLocales) {
    AppSettings::setLocale(kRussianLocale);
    QuorvelNative russian(L"InputDevice", L"Штрихкод");
    AppSettings::setLocale(kEnglishLocale);
    russian.SetLocale(row.name);
    EXPECT_EQ(AppSettings::locale(), kRussianLocale) << testing::PrintToString(row.name);
  }
  AppSettings::setLocale(kEnglishLocale);
  QuorvelNative converted(L"InputDevice", L"Штрихкод");
  converted.SetLocale(u"ru_RU");
  converted.SetLocale(u"en_US");
  EXPECT_EQ(AppSettings::locale(), kRussianLocale);
}

TEST_F(ComponentTest, LocaleNamesMayBeLong) {
  AppSettings::setLocale(kEnglishLocale);
  QuorvelNative english(L"InputDevice", L"Штрихкод");
  english.SetLocale(std::u16string(10000, u'x').c_str());
  EXPECT_EQ(AppSettings::locale(), kEnglishLocale);
  english.SetLocale((std::u16string(10000, u'x') + u"rU").c_str());
  EXPECT_EQ(AppSettings::locale(), kRussianLocale);
}

TEST_F(ComponentTest, ANullLocaleCountsAsAnEmptyName) {
  AppSettings::setLocale(kEnglishLocale);
  QuorvelNative english(L"InputDevice", L"Штрихкод");
  component_.SetLocale(nullptr);
  EXPECT_EQ(AppSettings::locale(), kRussianLocale);
  english.SetLocale(nullptr);
  EXPECT_EQ(AppSettings::locale(), kEnglishLocale);
}

class OnInputTest : public ComponentTest {
 protected:
  OnInputTest() { connect(); }

  std::vector<Event> input(int equipmentType, int dataType, const std::wstring& data,
                           const std::wstring& source = L"InputDevice#1") {
    component_.OnInput(source, equipmentType, dataType, data);
    return connection_.events();
  }
};

TEST_F(OnInputTest, RaisesOneEventInTheProcessWideLanguage) {
  // The component itself is Russian throughout.
  const struct {
    unsigned locale;
    int equipment, dataType;
    std::u16string name, data;
  } rows[] = {
      {kRussianLocale, kScanner, kDataText, u"Штрихкод", u"123"},
      {kRussianLocale, kScanner, kDataHumanReadable, u"Штрихкод", u"123"},
      {kRussianLocale, kScanner, kDataBase64, u"ШтрихкодBase64", u"MTIz"},
      {kRussianLocale, kCardReader, kDataText, u"ДанныеКарты", u"123"},
      {kRussianLocale, kCardReader, kDataHumanReadable, u"Штрихкод", u"123"},
      {kRussianLocale, kCardReader, kDataBase64, u"ДанныеКартыBase64", u"MTIz"},
      {kEnglishLocale, kScanner, kDataText, u"Barcode", u"123"},
      {kEnglishLocale, kScanner, kDataHumanReadable, u"Barcode", u"123"},
      {kEnglishLocale, kScanner, kDataBase64, u"BarcodeBase64", u"MTIz"},
      {kEnglishLocale, kCardReader, kDataText, u"TrackData", u"123"},
      {kEnglishLocale, kCardReader, kDataHumanReadable, u"Barcode", u"123"},
      {kEnglishLocale, kCardReader, kDataBase64, u"TrackDataBase64", u"MTIz"},
      {kEnglishLocale, 0, kDataText, u"Barcode", u"123"},
      {kEnglishLocale, 0, kDataBase64, u"Barcode", u"MTIz"},
      {kEnglishLocale, 64, kDataText, u"Barcode", u"123"},
      {kEnglishLocale, 64, kDataBase64, u"Barcode", u"MTIz"},
      {kRussianLocale, 64, kDataHumanReadable, u"Штрихкод", u"123"},
      {kEnglishLocale, kScanner, 5, u"Barcode", u"123"},
  };
  std::vector<Event> expected;
  for (const auto& row : rows) {
    AppSettings::setLocale(row.locale);
    input(row.equipment, row.dataType, L"MTIz");
    expected.push_back({u"InputDevice#1", row.name, row.data});
  }
  EXPECT_EQ(connection_.events(), expected);
}

TEST_F(OnInputTest, ConvertsTheDataToItsOutputType) {
  input(kCardReader, kDataHumanReadable, L"AkFCDQo=");  // 02 41 42 0D 0A
  input(kScanner, kDataText, L"0J/RgNC40LLQtdGC");
  input(kScanner, kDataHumanReadable, L"0J8=");
  input(kScanner, kDataText, L"8J+YgA==");
  std::vector<std::u16string> data;
  for (const Event& event : connection_.events()) data.push_back(event.data);
  EXPECT_EQ(data,
            (std::vector<std::u16string>{u"(002)AB(013010)", u"Привет", u"(208159)", u"\uF600"}));
}

TEST_F(OnInputTest, RaisesAnEventForEmptyData) {
  for (const int dataType :
       std::initializer_list<int>{kDataText, kDataHumanReadable, kDataBase64}) {
    input(kScanner, dataType, L"");
  }
  const std::vector<Event> events = connection_.events();
  ASSERT_EQ(events.size(), 3u);
  for (const Event& event : events) EXPECT_EQ(event.data, u"");
}

TEST_F(OnInputTest, TextsMayBeLong) {
  const std::vector<Event> events =
      input(kScanner, kDataBase64, std::wstring(40000, L'A'), std::wstring(10000, L'Ж'));
  ASSERT_EQ(events.size(), 1u);
  EXPECT_EQ(events[0].data, std::u16string(40000, u'A'));
  EXPECT_EQ(events[0].source, std::u16string(10000, u'Ж'));
}

TEST_F(OnInputTest, WithoutAConnectionNothingHappens) {
  QuorvelNative unconnected(L"InputDevice", L"Штрихкод");
  unconnected.OnInput(L"InputDevice#1", kScanner, kDataText, L"");
  unconnected.OnInput(L"InputDevice#1", kScanner, kDataText, L"MTIz");
}

TEST_F(OnInputTest, AllocatesNoHostMemory) {
  input(kScanner, kDataText, L"MTIz");
  EXPECT_TRUE(memory_.requests.empty());
}

TEST_F(OnInputTest, MayRunOnSeveralThreadsBesideTheHostsCalls) {
  constexpr int kReaders = 3;
  constexpr int kRounds = 300;
  AppSettings::setLocale(kEnglishLocale);
  QuorvelNative english(L"InputDevice", L"Штрихкод");
  std::atomic<int> reading = 0;
  std::atomic<bool> stop = false;
  std::vector<std::thread> readers;
  for (int reader = 0; reader < kReaders; ++reader) {
    readers.emplace_back([&] {
      component_.OnInput(L"InputDevice#1", kScanner, kDataText, L"MTIz");
      ++reading;
      while (!stop) component_.OnInput(L"InputDevice#1", kScanner, kDataText, L"MTIz");
    });
  }
  while (reading < kReaders) std::this_thread::yield();
  for (int round = 0; round < kRounds; ++round) {
    component_.Init(&connection_);
    component_.SetLocale(u"ru_RU");
    english.SetLocale(u"en_US");
  }
  stop = true;
  for (std::thread& reader : readers) reader.join();

  const Event russian = {u"InputDevice#1", u"Штрихкод", u"123"};
  const Event inEnglish = {u"InputDevice#1", u"Barcode", u"123"};
  for (const Event& event : connection_.events()) {
    ASSERT_TRUE(event == russian || event == inEnglish);
  }
}

}  // namespace
}  // namespace quorvel
