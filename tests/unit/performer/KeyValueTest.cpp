#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>

#include "performer/KeyValue.h"
#include "tests/rig/Variants.h"

namespace quorvel {
namespace {

// Counts its copies.
struct CountingMap : std::map<std::wstring, int> {
  CountingMap() = default;
  CountingMap(const CountingMap& other) : std::map<std::wstring, int>(other) { ++copies; }
  inline static int copies = 0;
};

TEST(KeyValue, AnAbsentKeyGivesTheDefault) {
  const KeyValue<std::wstring, int> values;
  EXPECT_EQ(values.value(L"key", 5), 5);
  EXPECT_EQ(values.value(L"", -1), -1);
}

TEST(KeyValue, AKeyGivesTheValueSetLast) {
  KeyValue<std::wstring, int> values;
  values.setValue(L"key", 1);
  EXPECT_EQ(values.value(L"key", 5), 1);
  values.setValue(L"key", 2);
  EXPECT_EQ(values.value(L"key", 5), 2);
  EXPECT_EQ(values.value(L"Key", 5), 5);
}

TEST(KeyValue, AcceptsAnyKey) {
  KeyValue<std::wstring, int> values;
  const std::wstring longKey(10000, L'Ж');
  const std::wstring zeros(3, L'\0');
  values.setValue(L"", 1);
  values.setValue(longKey, 2);
  values.setValue(zeros, 3);
  EXPECT_EQ(values.value(L"", 0), 1);
  EXPECT_EQ(values.value(longKey, 0), 2);
  EXPECT_EQ(values.value(zeros, 0), 3);
}

TEST(KeyValue, KeepsAWholeVariant) {
  tVariant stored = rig::untouchedVariant();
  KeyValue<std::wstring, tVariant> values;
  values.setValue(L"key", stored);
  EXPECT_TRUE(rig::sameBytes(values.value(L"key", rig::numberVariant(0)), stored));
  EXPECT_TRUE(rig::sameBytes(values.value(L"other", stored), stored));
}

TEST(KeyValue, ACopyIsUnaffectedByLaterChanges) {
  KeyValue<std::wstring, int> values;
  values.setValue(L"key", 1);
  const KeyValue<std::wstring, int> snapshot = values;
  values.setValue(L"key", 2);
  values.setValue(L"new", 3);
  EXPECT_EQ(snapshot.value(L"key", 0), 1);
  EXPECT_EQ(snapshot.value(L"new", 0), 0);
  EXPECT_EQ(values.value(L"key", 0), 2);
  EXPECT_EQ(values.value(L"new", 0), 3);
}

TEST(KeyValue, CopiesTheMapOnlyWhileItIsShared) {
  CountingMap::copies = 0;
  KeyValue<std::wstring, int, CountingMap> values;
  values.setValue(L"a", 1);
  values.setValue(L"a", 2);
  values.setValue(L"b", 3);
  EXPECT_EQ(CountingMap::copies, 0);
  {
    const auto snapshot = values;
    EXPECT_EQ(CountingMap::copies, 0);
    values.setValue(L"a", 4);
    EXPECT_EQ(CountingMap::copies, 1);
    values.setValue(L"a", 5);
    EXPECT_EQ(CountingMap::copies, 1);
  }
  auto passing = std::make_unique<KeyValue<std::wstring, int, CountingMap>>(values);
  passing.reset();
  values.setValue(L"a", 6);
  EXPECT_EQ(CountingMap::copies, 1);
}

TEST(KeyValue, IsEmptyAndUsableAfterAMove) {
  KeyValue<std::wstring, int> values;
  values.setValue(L"key", 1);
  const KeyValue<std::wstring, int> taken = std::move(values);
  EXPECT_EQ(taken.value(L"key", 0), 1);
  // NOLINTBEGIN(bugprone-use-after-move): that is what this test is about.
  EXPECT_EQ(values.value(L"key", 7), 7);
  values.setValue(L"key", 2);
  EXPECT_EQ(values.value(L"key", 7), 2);
  // NOLINTEND(bugprone-use-after-move)
  EXPECT_EQ(taken.value(L"key", 0), 1);
}

TEST(KeyValue, CanBeDestroyedThroughItsInterface) {
  EXPECT_TRUE((std::has_virtual_destructor_v<KeyValueInterface<std::wstring, int>>));
  const auto shared = std::make_shared<int>(5);
  auto values = std::make_unique<KeyValue<std::wstring, std::shared_ptr<int>>>();
  values->setValue(L"key", shared);
  std::unique_ptr<KeyValueInterface<std::wstring, std::shared_ptr<int>>> base = std::move(values);
  EXPECT_EQ(shared.use_count(), 2);
  base.reset();
  EXPECT_EQ(shared.use_count(), 1);
}

}  // namespace
}  // namespace quorvel
