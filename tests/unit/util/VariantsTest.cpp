#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "tests/rig/HostCodes.h"
#include "tests/rig/HostDoubles.h"
#include "tests/rig/Variants.h"
#include "util/Variants.h"

namespace quorvel {
namespace {

using namespace std::string_literals;
using rig::doubleVariant;
using rig::FakeMemoryManager;
using rig::numberVariant;
using rig::textVariant;
using rig::variantOfType;

constexpr unsigned kTypeCodes = 0x10000;  // vt has 16 bits
constexpr std::int32_t kUntouched = 77;

std::string bytesOf(const tVariant& variant) {
  return {reinterpret_cast<const char*>(&variant), sizeof variant};
}

TEST(EmptyVariant, IsAllZeros) {
  EXPECT_EQ(bytesOf(emptyVariant()), std::string(sizeof(tVariant), '\0'));
}

TEST(SetBool, WritesOneByteAndTheTypeCode) {
  for (const bool value : {false, true}) {
    tVariant expected = rig::untouchedVariant();
    expected.i8 = value;
    expected.vt = rig::kTypeBool;
    tVariant variant = rig::untouchedVariant();
    setBool(variant, value);
    EXPECT_EQ(bytesOf(variant), bytesOf(expected));
  }
}

TEST(SetInt, WritesTheNumberAndTheTypeCode) {
  tVariant expected = rig::untouchedVariant();
  expected.intValue = -5;
  expected.vt = rig::kTypeInt32;
  tVariant variant = rig::untouchedVariant();
  setInt(variant, -5);
  EXPECT_EQ(bytesOf(variant), bytesOf(expected));
}

TEST(TextFromVariant, IgnoresTheTypeCode) {
  for (const unsigned type : rig::typeCodes()) {
    tVariant variant = textVariant(u"Привет");
    variant.vt = static_cast<std::uint16_t>(type);
    EXPECT_EQ(convFromShortWchar(variant), L"Привет") << "type code " << type;
  }
}

TEST(TextFromVariant, UsesTheLengthOfTheVariant) {
  EXPECT_EQ(convFromShortWchar(textVariant(u"abcdef", 3)), L"abc");
  EXPECT_EQ(convFromShortWchar(textVariant(u"abcdef", 0)), L"abcdef");
  EXPECT_EQ(convFromShortWchar(textVariant(u"ab\0cd", 5)), L"ab\0\0\0"s);
  EXPECT_EQ(convFromShortWchar(textVariant(nullptr, 0)), L"");
  EXPECT_EQ(convFromShortWchar(textVariant(nullptr, 10000)), L"");
}

TEST(ExpectedText, IsAWideStringOrANullPointer) {
  for (const unsigned type : rig::typeCodes()) {
    SCOPED_TRACE(testing::Message() << "type code " << type);
    tVariant text = textVariant(u"abc");
    text.vt = static_cast<std::uint16_t>(type);
    if (type == rig::kTypeText) {
      EXPECT_EQ(textOf(text), L"abc");
    } else {
      EXPECT_EQ(textOf(text), std::nullopt);
    }
    EXPECT_EQ(textOf(variantOfType(type)), L"");
  }
}

TEST(ExpectedText, NeverFollowsANumberAsAPointer) {
  EXPECT_EQ(textOf(numberVariant(1)), std::nullopt);
  EXPECT_EQ(textOf(doubleVariant(1.1)), std::nullopt);
}

TEST(VariantToInt, IntegersGiveTheFirstWord) {
  for (const unsigned type : {rig::kTypeInt16, rig::kTypeInt32, rig::kTypeError, rig::kTypeUint8}) {
    for (const std::int32_t number : {0, 1, -1, 0x12345678, INT32_MIN, INT32_MAX}) {
      std::int32_t value = kUntouched;
      EXPECT_TRUE(convVarToInt(numberVariant(number, type), value));
      EXPECT_EQ(value, number) << "type code " << type;
    }
  }
}

TEST(VariantToInt, OtherTypesAreRefused) {
  const std::set<unsigned> accepted = {rig::kTypeInt16,  rig::kTypeInt32, rig::kTypeFloat,
                                       rig::kTypeDouble, rig::kTypeError, rig::kTypeUint8};
  for (unsigned type = 0; type < kTypeCodes; ++type) {
    std::int32_t value = kUntouched;
    const bool taken = convVarToInt(numberVariant(5, type), value);
    ASSERT_EQ(taken, accepted.count(type) != 0) << "type code " << type;
    if (!taken) {
      ASSERT_EQ(value, kUntouched) << "type code " << type;
    }
  }
}

TEST(VariantToInt, BothFloatingTypesAreReadAsADouble) {
  const struct {
    double number;
    std::int32_t value;
  } rows[] = {{0.0, 0},
              {-0.0, 0},
              {9600.0, 9600},
              {1.999, 1},
              {-1.999, -1},
              {0.5, 0},
              {-0.5, 0},
              {2147483647.0, INT32_MAX},
              {2147483647.9, INT32_MAX},
              {-2147483648.0, INT32_MIN},
              {-2147483648.9, INT32_MIN}};
  for (const unsigned type : {rig::kTypeFloat, rig::kTypeDouble}) {
    for (const auto& row : rows) {
      std::int32_t value = kUntouched;
      EXPECT_TRUE(convVarToInt(doubleVariant(row.number, type), value));
      EXPECT_EQ(value, row.value) << row.number << ", type code " << type;
    }
  }
}

TEST(VariantToInt, A32BitFloatIsReadAsADouble) {
  // The bytes of 2.0f followed by zeros are a double close to 0.
  tVariant variant = variantOfType(rig::kTypeFloat);
  variant.floatValue = 2.0f;
  std::int32_t value = kUntouched;
  EXPECT_TRUE(convVarToInt(variant, value));
  EXPECT_EQ(value, 0);
}

TEST(VariantToInt, ADoubleThatDoesNotFitGivesTheSmallestInteger) {
  for (const double number :
       {2147483648.0, -2147483649.0, 1e300, -1e300, HUGE_VAL, -HUGE_VAL, std::nan("")}) {
    std::int32_t value = kUntouched;
    EXPECT_TRUE(convVarToInt(doubleVariant(number), value));
    EXPECT_EQ(value, INT32_MIN) << number;
  }
}

TEST(VariantToDWORD, IntegersGiveTheLowWord) {
  for (const unsigned type :
       {rig::kTypeInt16, rig::kTypeInt32, rig::kTypeError, rig::kTypeUint8, rig::kTypeUint16,
        rig::kTypeUint32, rig::kTypeInt64, rig::kTypeUint64}) {
    for (const std::uint64_t number :
         {0ull, 1ull, 0x80000000ull, 0xFFFFFFFFull, 0x1234567800000005ull, 0xFFFFFFFFFFFFFFFFull}) {
      tVariant variant = variantOfType(type);
      variant.ullValue = number;
      std::uint32_t value = kUntouched;
      EXPECT_TRUE(convVarToDWORD(variant, value));
      EXPECT_EQ(value, static_cast<std::uint32_t>(number)) << "type code " << type;
    }
  }
}

TEST(VariantToDWORD, OtherTypesAreRefused) {
  const std::set<unsigned> accepted = {
      rig::kTypeInt16, rig::kTypeInt32,  rig::kTypeFloat,  rig::kTypeDouble, rig::kTypeError,
      rig::kTypeUint8, rig::kTypeUint16, rig::kTypeUint32, rig::kTypeInt64,  rig::kTypeUint64};
  for (unsigned type = 0; type < kTypeCodes; ++type) {
    std::uint32_t value = kUntouched;
    const bool taken = convVarToDWORD(numberVariant(5, type), value);
    ASSERT_EQ(taken, accepted.count(type) != 0) << "type code " << type;
    if (!taken) {
      ASSERT_EQ(value, std::uint32_t{kUntouched}) << "type code " << type;
    }
  }
}

TEST(VariantToDWORD, ADoubleGivesTheLowBitsOfItsIntegerPart) {
  const struct {
    double number;
    std::uint32_t value;
  } rows[] = {{0.0, 0},
              {9600.9, 9600},
              {-1.9, 0xFFFFFFFF},
              {4294967295.5, 0xFFFFFFFF},
              {4294967296.0, 0},
              {4294967301.0, 5},
              {-4294967301.0, 0xFFFFFFFB},
              {9007199254740993.0, 0},  // 2^53 + 1 rounds to 2^53
              {-9223372036854775808.0, 0}};
  for (const unsigned type : {rig::kTypeFloat, rig::kTypeDouble}) {
    for (const auto& row : rows) {
      std::uint32_t value = kUntouched;
      EXPECT_TRUE(convVarToDWORD(doubleVariant(row.number, type), value));
      EXPECT_EQ(value, row.value) << row.number << ", type code " << type;
    }
  }
}

TEST(VariantToDWORD, ADoubleThatDoesNotFitGivesZero) {
  for (const double number :
       {9223372036854775808.0, 1e300, -1e300, HUGE_VAL, -HUGE_VAL, std::nan("")}) {
    std::uint32_t value = kUntouched;
    EXPECT_TRUE(convVarToDWORD(doubleVariant(number), value));
    EXPECT_EQ(value, 0u) << number;
  }
}

TEST(AllocAndConvert, CopiesTheTextToTheHostsMemory) {
  FakeMemoryManager memory;
  std::uint32_t length = kUntouched;
  const WCHAR_T* const text = AllocAndConvert(&memory, L"Привет", &length);
  ASSERT_NE(text, nullptr);
  EXPECT_EQ(text, u"Привет"s);
  EXPECT_EQ(length, 6u);
  EXPECT_EQ(memory.requests, std::vector<unsigned long>{14});
  EXPECT_EQ(memory.freed, 0);
}

TEST(AllocAndConvert, TheLengthIsOptional) {
  FakeMemoryManager memory;
  EXPECT_EQ(AllocAndConvert(&memory, L"abc"), u"abc"s);
}

TEST(AllocAndConvert, AnEmptyTextIsJustTheTerminator) {
  FakeMemoryManager memory;
  std::uint32_t length = kUntouched;
  EXPECT_EQ(AllocAndConvert(&memory, L"", &length), u""s);
  EXPECT_EQ(length, 0u);
  EXPECT_EQ(memory.requests, std::vector<unsigned long>{2});
}

TEST(AllocAndConvert, TakesALongText) {
  FakeMemoryManager memory;
  EXPECT_EQ(AllocAndConvert(&memory, std::wstring(10000, L'Ж').c_str()),
            std::u16string(10000, u'Ж'));
  EXPECT_EQ(memory.requests, std::vector<unsigned long>{20002});
}

TEST(AllocAndConvert, WithoutAMemoryManagerGivesOnlyTheLength) {
  std::uint32_t length = kUntouched;
  EXPECT_EQ(AllocAndConvert(nullptr, L"abc", &length), nullptr);
  EXPECT_EQ(length, 3u);
  EXPECT_EQ(AllocAndConvert(nullptr, L"abc"), nullptr);
}

TEST(AllocAndConvert, IsNullWhenTheMemoryManagerFails) {
  FakeMemoryManager memory;
  for (const auto answer :
       {FakeMemoryManager::Answer::kRefusal, FakeMemoryManager::Answer::kSuccessWithoutBlock}) {
    memory.answer = answer;
    std::uint32_t length = kUntouched;
    EXPECT_EQ(AllocAndConvert(&memory, L"abc", &length), nullptr);
    EXPECT_EQ(length, 3u);
  }
}

TEST(AllocAndConvertVariant, IsAWideString) {
  FakeMemoryManager memory;
  const tVariant variant = AllocAndConvertVariant(&memory, L"Привет");
  EXPECT_EQ(variant.vt, rig::kTypeText);
  EXPECT_EQ(variant.wide.length, 6u);
  EXPECT_EQ(variant.wide.text, u"Привет"s);
}

TEST(AllocAndConvertVariant, HasANullTextWhenTheMemoryManagerFails) {
  FakeMemoryManager memory;
  memory.answer = FakeMemoryManager::Answer::kRefusal;
  for (FakeMemoryManager* const manager : {static_cast<FakeMemoryManager*>(nullptr), &memory}) {
    const tVariant variant = AllocAndConvertVariant(manager, L"abc");
    EXPECT_EQ(variant.vt, rig::kTypeText);
    EXPECT_EQ(variant.wide.text, nullptr);
    EXPECT_EQ(variant.wide.length, 3u);
  }
}

}  // namespace
}  // namespace quorvel
