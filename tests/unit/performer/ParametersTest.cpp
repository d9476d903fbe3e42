// The performer's parameters: their defaults, and which types of values they accept.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "tests/rig/HostCodes.h"
#include "tests/rig/Variants.h"
#include "tests/unit/performer/OpenPerformer.h"
#include "tests/unit/performer/RestoredSettings.h"

namespace quorvel {
namespace {

using namespace std::string_literals;
using rig::boolVariant;
using rig::doubleVariant;
using rig::numberVariant;
using rig::textVariant;
using rig::variantOfType;
using test::OpenPerformer;

// Everything that parameters can change, as text.
using Snapshot = std::map<std::string, std::wstring>;

Snapshot snapshotOf(const OpenPerformer& performer) {
  const auto& keyboard = performer.keyboardFactory_;
  const auto& com = performer.comPortFactory_;
  const auto number = [](auto value) { return std::to_wstring(value); };
  return {
      {"keyboard port", number(keyboard.port)},
      {"keyboard suffix", keyboard.suffix},
      {"keyboard prefix", keyboard.prefix},
      {"keyboard timeout", number(keyboard.timeout)},
      {"keyboard gsSymbolKey", number(static_cast<std::int32_t>(keyboard.gsSymbolKey))},
      {"keyboard listenOnly", number(keyboard.listenOnly)},
      {"keyboard spareFlag1", number(keyboard.spareFlag1)},
      {"keyboard keyboardDevice", keyboard.keyboardDevice},
      {"keyboard spareFlag2", number(keyboard.spareFlag2)},
      {"keyboard ignoreKeyboardState", number(keyboard.ignoreKeyboardState)},
      {"com port", number(com.port)},
      {"com speed", number(com.speed)},
      {"com dataBits", number(com.dataBits)},
      {"com stopBit", number(com.stopBit)},
      {"com suffix", com.suffix},
      {"com timeoutCOM", number(com.timeoutCOM)},
      {"com comEncoding", com.comEncoding},
      {"data kind", performer.dataKind_},
      {"equipment text", performer.equipmentText_},
      {"equipment type", number(performer.settings_->equipmentType)},
      {"output data type", number(performer.settings_->outputDataType)},
      {"open devices", number(performer.devices_.size())},
  };
}

const Snapshot kDefaults = {
    {"keyboard port", L"0"},
    {"keyboard suffix", L"\r"},
    {"keyboard prefix", L""},
    {"keyboard timeout", L"25"},
    {"keyboard gsSymbolKey", L"7"},
    {"keyboard listenOnly", L"0"},
    {"keyboard spareFlag1", L"0"},
    {"keyboard keyboardDevice", L""},
    {"keyboard spareFlag2", L"0"},
    {"keyboard ignoreKeyboardState", L"1"},
    {"com port", L"0"},
    {"com speed", L"9600"},
    {"com dataBits", L"8"},
    {"com stopBit", L"1"},
    {"com suffix", L"\r"},
    {"com timeoutCOM", L"5"},
    {"com comEncoding", L"UTF-8"},
    {"data kind", L""},
    {"equipment text", L""},
    {"equipment type", L"16"},
    {"output data type", L"0"},
    {"open devices", L"0"},
};

enum class Takes { kNumber, kCharacter, kText, kAnything, kEquipment, kBoolean };

struct Parameter {
  const wchar_t* name;
  Takes takes;
  std::vector<std::string> fields;  // the fields it sets
  bool isUnsigned = false;
};

const std::vector<Parameter> kParameters = {
    {L"Port", Takes::kNumber, {"keyboard port", "com port"}, true},
    {L"KeyboardDevice", Takes::kText, {"keyboard keyboardDevice"}},
    {L"DataBits", Takes::kNumber, {"com dataBits"}, true},
    {L"StopBit", Takes::kNumber, {"com stopBit"}, true},
    {L"Speed", Takes::kNumber, {"com speed"}, true},
    {L"Prefix", Takes::kCharacter, {"keyboard prefix"}},
    {L"Suffix", Takes::kCharacter, {"keyboard suffix", "com suffix"}},
    {L"Timeout", Takes::kNumber, {"keyboard timeout"}},
    {L"TimeoutCOM", Takes::kNumber, {"com timeoutCOM"}},
    {L"COMEncoding", Takes::kText, {"com comEncoding"}},
    {L"GSSymbolKey", Takes::kNumber, {"keyboard gsSymbolKey"}},
    {L"LogFileFolder", Takes::kAnything, {}},
    {L"EquipmentType", Takes::kEquipment, {}},
    {L"OutputDataType", Takes::kNumber, {"output data type"}, true},
    {L"IgnoreKeyboardState", Takes::kBoolean, {"keyboard ignoreKeyboardState"}},
};

// The fields of a parameter after it was set to a number.
std::wstring afterNumber(const Parameter& parameter, std::int32_t number) {
  if (parameter.takes == Takes::kCharacter) {
    return number == -1 ? L""s : std::wstring(1, static_cast<wchar_t>(number));
  }
  return parameter.isUnsigned ? std::to_wstring(static_cast<std::uint32_t>(number))
                              : std::to_wstring(number);
}

bool takesNumbers(const Parameter& parameter) {
  return parameter.takes == Takes::kNumber || parameter.takes == Takes::kCharacter;
}

Snapshot defaultsWith(const std::vector<std::string>& fields, const std::wstring& value) {
  Snapshot snapshot = kDefaults;
  for (const std::string& field : fields) snapshot.at(field) = value;
  return snapshot;
}

class ParametersTest : public test::RestoredSettings {
 protected:
  // The state of a new performer after setting one parameter.
  static Snapshot after(const wchar_t* name, const tVariant& value) {
    OpenPerformer performer;
    EXPECT_TRUE(set(performer, name, value));
    return snapshotOf(performer);
  }

  static bool set(OpenPerformer& performer, const wchar_t* name, const tVariant& value) {
    const tVariant result = performer.SetParameter(name, value);
    EXPECT_EQ(result.vt, rig::kTypeBool);
    return result.boolValue;
  }
};

TEST_F(ParametersTest, HaveTheirDefaults) {
  const OpenPerformer performer;
  EXPECT_EQ(snapshotOf(performer), kDefaults);
}

TEST_F(ParametersTest, ThereAreFifteen) {
  const OpenPerformer performer;
  std::set<std::wstring> names, expected;
  for (const auto& [name, setter] : performer.settings_->setters) names.insert(name);
  for (const Parameter& parameter : kParameters) expected.insert(parameter.name);
  EXPECT_EQ(names, expected);
  EXPECT_EQ(names.size(), 15u);
}

TEST_F(ParametersTest, NumbersAreStoredWithoutARangeCheck) {
  for (const Parameter& parameter : kParameters) {
    if (!takesNumbers(parameter)) continue;
    for (const std::int32_t number :
         {0, 1, 2, 10, 13, 29, 64, 65, 99, 129, 9600, 115200, -1, -2, INT_MIN, INT_MAX}) {
      SCOPED_TRACE(testing::Message() << testing::PrintToString(parameter.name) << " " << number);
      EXPECT_EQ(after(parameter.name, numberVariant(number)),
                defaultsWith(parameter.fields, afterNumber(parameter, number)));
    }
  }
}

TEST_F(ParametersTest, NumbersAreAcceptedFromSomeNumericTypesOnly) {
  const std::set<unsigned> numbers = {rig::kTypeInt16, rig::kTypeInt32, rig::kTypeError,
                                      rig::kTypeUint8};
  const std::set<unsigned> doubles = {rig::kTypeFloat, rig::kTypeDouble};
  for (const Parameter& parameter : kParameters) {
    if (!takesNumbers(parameter)) continue;
    for (const unsigned type : rig::typeCodes()) {
      SCOPED_TRACE(testing::Message()
                   << testing::PrintToString(parameter.name) << ", type code " << type);
      const bool isDouble = doubles.count(type) != 0;
      const tVariant value = isDouble ? doubleVariant(77.9, type) : numberVariant(77, type);
      const bool taken = isDouble || numbers.count(type) != 0;
      EXPECT_EQ(after(parameter.name, value),
                taken ? defaultsWith(parameter.fields, afterNumber(parameter, 77)) : kDefaults);
    }
  }
}

TEST_F(ParametersTest, ADoubleIsTruncatedTowardZero) {
  EXPECT_EQ(after(L"Timeout", doubleVariant(-3.9)).at("keyboard timeout"), L"-3");
  EXPECT_EQ(after(L"Prefix", doubleVariant(-1.5)).at("keyboard prefix"), L"");
  EXPECT_EQ(after(L"Speed", doubleVariant(19200.99)).at("com speed"), L"19200");
  EXPECT_EQ(after(L"Timeout", doubleVariant(1e300)).at("keyboard timeout"), L"-2147483648");
  EXPECT_EQ(after(L"Timeout", doubleVariant(std::nan(""))).at("keyboard timeout"), L"-2147483648");
}

TEST_F(ParametersTest, AStringLeavesTheSpeedAt9600) {
  EXPECT_EQ(after(L"Speed", textVariant(u"19200")), kDefaults);
}

TEST_F(ParametersTest, ACharacterCodeGivesOneCharacterAndMinusOneNone) {
  EXPECT_EQ(after(L"Prefix", numberVariant(-1)).at("keyboard prefix"), L"");
  EXPECT_EQ(after(L"Prefix", numberVariant(2)).at("keyboard prefix"), L"\x02");
  EXPECT_EQ(after(L"Prefix", numberVariant(0)).at("keyboard prefix"), L"\0"s);
  const Snapshot lineFeed = after(L"Suffix", numberVariant(10));
  EXPECT_EQ(lineFeed.at("keyboard suffix"), L"\n");
  EXPECT_EQ(lineFeed.at("com suffix"), L"\n");
  const Snapshot none = after(L"Suffix", numberVariant(-1));
  EXPECT_EQ(none.at("keyboard suffix"), L"");
  EXPECT_EQ(none.at("com suffix"), L"");
}

TEST_F(ParametersTest, TextsAreAcceptedFromWideStringsOnly) {
  for (const Parameter& parameter : kParameters) {
    if (parameter.takes != Takes::kText) continue;
    for (const unsigned type : rig::typeCodes()) {
      SCOPED_TRACE(testing::Message()
                   << testing::PrintToString(parameter.name) << ", type code " << type);
      tVariant value = textVariant(u"Сканер");
      value.vt = static_cast<std::uint16_t>(type);
      EXPECT_EQ(after(parameter.name, value),
                type == rig::kTypeText ? defaultsWith(parameter.fields, L"Сканер") : kDefaults);
    }
  }
}

TEST_F(ParametersTest, ANumberIsNeverFollowedAsAPointer) {
  for (const wchar_t* const name : {L"KeyboardDevice", L"COMEncoding", L"EquipmentType"}) {
    EXPECT_EQ(after(name, numberVariant(1)), kDefaults);
    EXPECT_EQ(after(name, doubleVariant(1.1)), kDefaults);
    EXPECT_EQ(after(name, boolVariant(true)), kDefaults);
  }
}

TEST_F(ParametersTest, ANullPointerIsTheEmptyText) {
  for (const Parameter& parameter : kParameters) {
    if (parameter.takes != Takes::kText) continue;
    for (const unsigned type : rig::typeCodes()) {
      for (const std::uint32_t length : {0u, 5u, 10000u}) {
        OpenPerformer performer;
        set(performer, parameter.name, textVariant(u"before"));
        tVariant value = textVariant(nullptr, length);
        value.vt = static_cast<std::uint16_t>(type);
        EXPECT_TRUE(set(performer, parameter.name, value));
        EXPECT_EQ(snapshotOf(performer), defaultsWith(parameter.fields, L""))
            << testing::PrintToString(parameter.name) << ", type code " << type;
      }
    }
  }
}

TEST_F(ParametersTest, TextsHaveTheLengthGivenInTheVariant) {
  EXPECT_EQ(after(L"COMEncoding", textVariant(u"Windows-1251", 7)).at("com comEncoding"),
            L"Windows");
  EXPECT_EQ(after(L"COMEncoding", textVariant(u"Windows-1251", 0)).at("com comEncoding"),
            L"Windows-1251");
  EXPECT_EQ(after(L"COMEncoding", textVariant(u"ab\0cd", 5)).at("com comEncoding"), L"ab\0\0\0"s);
}

TEST_F(ParametersTest, TextsMayBeLong) {
  const std::u16string text(10000, u'Ж');
  const std::wstring expected(10000, L'Ж');
  for (const Parameter& parameter : kParameters) {
    if (parameter.takes != Takes::kText) continue;
    EXPECT_EQ(after(parameter.name, textVariant(text.c_str())),
              defaultsWith(parameter.fields, expected));
  }
  EXPECT_EQ(after(L"EquipmentType", textVariant(text.c_str())),
            defaultsWith({"equipment text"}, expected));
}

TEST_F(ParametersTest, LogFileFolderAcceptsAnythingAndChangesNothing) {
  for (const unsigned type : rig::typeCodes()) {
    EXPECT_EQ(after(L"LogFileFolder", numberVariant(77, type)), kDefaults) << type;
  }
  EXPECT_EQ(after(L"LogFileFolder", textVariant(u"/var/log")), kDefaults);
  EXPECT_EQ(after(L"LogFileFolder", textVariant(nullptr, 10)), kDefaults);
}

TEST_F(ParametersTest, IgnoreKeyboardStateAcceptsBooleansOnly) {
  for (const unsigned type : rig::typeCodes()) {
    // All bytes are zero: a boolean is false.
    EXPECT_EQ(
        after(L"IgnoreKeyboardState", variantOfType(type)),
        type == rig::kTypeBool ? defaultsWith({"keyboard ignoreKeyboardState"}, L"0") : kDefaults)
        << "type code " << type;
  }
}

TEST_F(ParametersTest, AnyNonZeroByteIsTrue) {
  for (int byte = 0; byte < 256; ++byte) {
    OpenPerformer performer;
    performer.keyboardFactory_.ignoreKeyboardState = byte == 0;
    tVariant value = variantOfType(rig::kTypeBool);
    value.i8 = static_cast<std::int8_t>(byte);
    EXPECT_TRUE(set(performer, L"IgnoreKeyboardState", value));
    EXPECT_EQ(performer.keyboardFactory_.ignoreKeyboardState, byte != 0) << byte;
  }
}

TEST_F(ParametersTest, EquipmentNamesSelectTypeAndDataKind) {
  const struct {
    const char16_t* text;
    unsigned locale;
    std::wstring type, dataKind;
  } rows[] = {
      {u"СканерШтрихкода", rig::kRussianLocale, L"16", L"Штрихкод"},
      {u"СканерШтрихкода", rig::kEnglishLocale, L"16", L"Barcode"},
      {u"УстройствоВвода", rig::kRussianLocale, L"16", L"Штрихкод"},
      {u"УстройствоВвода", rig::kEnglishLocale, L"16", L"Barcode"},
      {u"СчитывательМагнитныхКарт", rig::kRussianLocale, L"32", L"ДанныеКарты"},
      {u"СчитывательМагнитныхКарт", rig::kEnglishLocale, L"32", L"TrackData"},
  };
  for (const auto& row : rows) {
    AppSettings::setLocale(row.locale);
    OpenPerformer performer;
    performer.settings_->equipmentType = 0;
    EXPECT_TRUE(set(performer, L"EquipmentType", textVariant(row.text)));
    const Snapshot snapshot = snapshotOf(performer);
    EXPECT_EQ(snapshot.at("equipment type"), row.type);
    EXPECT_EQ(snapshot.at("data kind"), row.dataKind);
    EXPECT_EQ(snapshot.at("equipment text"),
              std::wstring(row.text, row.text + std::u16string(row.text).size()));
  }
}

TEST_F(ParametersTest, OtherEquipmentNamesChangeOnlyTheText) {
  for (const char16_t* const text :
       {u"", u"BarcodeScanner", u"MagneticCardReader", u"сканерштрихкода", u"СканерШтрихкода ",
        u" СканерШтрихкода", u"СканерШтрихкод", u"СканерШтрихкодаX"}) {
    OpenPerformer performer;
    set(performer, L"EquipmentType", textVariant(u"СчитывательМагнитныхКарт"));
    Snapshot expected = snapshotOf(performer);
    expected.at("equipment text") = std::wstring(text, text + std::u16string(text).size());
    EXPECT_TRUE(set(performer, L"EquipmentType", textVariant(text)));
    EXPECT_EQ(snapshotOf(performer), expected);
  }
}

TEST_F(ParametersTest, EquipmentNamesAreWideStringsOnly) {
  for (const unsigned type : rig::typeCodes()) {
    if (type == rig::kTypeText) continue;
    tVariant value = textVariant(u"СчитывательМагнитныхКарт");
    value.vt = static_cast<std::uint16_t>(type);
    EXPECT_EQ(after(L"EquipmentType", value), kDefaults) << "type code " << type;
    EXPECT_EQ(after(L"EquipmentType", variantOfType(type)), kDefaults) << "type code " << type;
  }
}

TEST_F(ParametersTest, ANullEquipmentNameIsTheEmptyOne) {
  OpenPerformer performer;
  set(performer, L"EquipmentType", textVariant(u"СчитывательМагнитныхКарт"));
  EXPECT_TRUE(set(performer, L"EquipmentType", textVariant(nullptr, 24)));
  EXPECT_EQ(performer.equipmentText_, L"");
  EXPECT_EQ(performer.settings_->equipmentType, rig::kCardReader);
  EXPECT_EQ(performer.dataKind_, L"ДанныеКарты");
}

TEST_F(ParametersTest, SettersReportRefusedValues) {
  const OpenPerformer performer;
  for (const Parameter& parameter : kParameters) {
    SCOPED_TRACE(testing::PrintToString(parameter.name));
    const auto& setter = performer.settings_->setters.at(parameter.name);
    // No parameter accepts a 64-bit integer.
    EXPECT_EQ(setter(numberVariant(77, rig::kTypeInt64)), parameter.takes == Takes::kAnything);
    EXPECT_EQ(setter(numberVariant(77)),
              takesNumbers(parameter) || parameter.takes == Takes::kAnything);
    const bool takesTexts = parameter.takes == Takes::kText ||
                            parameter.takes == Takes::kAnything ||
                            parameter.takes == Takes::kEquipment;
    EXPECT_EQ(setter(textVariant(u"text")), takesTexts);
    EXPECT_EQ(setter(boolVariant(true)),
              parameter.takes == Takes::kBoolean || parameter.takes == Takes::kAnything);
  }
}

TEST_F(ParametersTest, UnknownNamesAreRefused) {
  OpenPerformer performer;
  const std::wstring longName(10000, L'x');
  for (const wchar_t* const name : {L"speed", L"SPEED", L"Speed ", L" Speed", L"", L"Скорость",
                                    L"Spee", L"Speedx", L"port", longName.c_str()}) {
    EXPECT_FALSE(set(performer, name, numberVariant(19200))) << testing::PrintToString(name);
  }
  EXPECT_EQ(snapshotOf(performer), kDefaults);
}

TEST_F(ParametersTest, LaterValuesReplaceEarlierOnes) {
  OpenPerformer performer;
  EXPECT_TRUE(set(performer, L"Port", numberVariant(129)));
  EXPECT_TRUE(set(performer, L"Port", numberVariant(3)));
  EXPECT_TRUE(set(performer, L"Port", textVariant(u"5")));
  EXPECT_EQ(performer.comPortFactory_.port, 3u);
  EXPECT_EQ(performer.keyboardFactory_.port, 3u);
}

TEST_F(ParametersTest, PerformersDoNotShareThem) {
  OpenPerformer first;
  const OpenPerformer second;
  set(first, L"Port", numberVariant(129));
  set(first, L"EquipmentType", textVariant(u"СчитывательМагнитныхКарт"));
  EXPECT_EQ(snapshotOf(second), kDefaults);
}

TEST_F(ParametersTest, CannotBeReadBack) {
  OpenPerformer performer;
  const std::wstring longName(10000, L'x');
  for (const wchar_t* const name : {L"Port", L"Speed", L"", L"no such name", longName.c_str()}) {
    EXPECT_TRUE(rig::sameBytes(performer.GetParameter(name), variantOfType(rig::kTypeEmpty)));
  }
  EXPECT_TRUE(rig::sameBytes(performer.GetParameter(nullptr), variantOfType(rig::kTypeEmpty)));
}

}  // namespace
}  // namespace quorvel
