#include <gtest/gtest.h>

#include <cstdint>

#include "dialog/LoneKeys.h"

namespace quorvel {
namespace {

constexpr unsigned kEscape = 9;
constexpr unsigned kAlt = 64;
constexpr unsigned kOther = 30;

KeyEvent press(std::uint32_t time, unsigned key = kEscape) {
  return {time, key, true, false, false};
}
KeyEvent release(std::uint32_t time, unsigned key = kEscape) {
  return {time, key, false, false, false};
}
KeyEvent pressInChord(std::uint32_t time, unsigned key) { return {time, key, true, false, true}; }
KeyEvent alt(std::uint32_t time, bool isPress) { return {time, kAlt, isPress, true, !isPress}; }

TEST(LoneKeys, FindAPressWithoutNeighbours) {
  LoneKeys keys;
  EXPECT_FALSE(keys.isAlone());
  EXPECT_TRUE(keys.note(press(1000)));
  EXPECT_FALSE(keys.note(release(1010)));
  EXPECT_TRUE(keys.isAlone());
}

TEST(LoneKeys, RefuseAPressShortlyAfterAnotherKey) {
  for (const bool isPress : {true, false}) {
    LoneKeys late;
    late.note(isPress ? press(1000, kOther) : release(1000, kOther));
    EXPECT_FALSE(late.note(press(1050)));
    LoneKeys later;
    later.note(isPress ? press(1000, kOther) : release(1000, kOther));
    EXPECT_TRUE(later.note(press(1051)));
  }
}

TEST(LoneKeys, RefuseAPressShortlyBeforeAnotherKey) {
  for (const bool isPress : {true, false}) {
    LoneKeys keys;
    keys.note(press(1000));
    keys.note(isPress ? press(1020, kOther) : release(1020, kOther));
    EXPECT_FALSE(keys.isAlone());
  }
  LoneKeys keys;
  keys.note(press(1000));
  keys.note(press(1021, kOther));
  EXPECT_TRUE(keys.isAlone());
}

TEST(LoneKeys, RefuseTheSameKeyTwiceInARow) {
  LoneKeys keys;
  keys.note(press(1000));
  keys.note(release(1001));
  EXPECT_FALSE(keys.note(press(1002)));
  EXPECT_FALSE(keys.isAlone());
}

TEST(LoneKeys, CountAltAsANeighbourOfAPlainKey) {
  LoneKeys before;
  before.note(alt(1000, true));
  EXPECT_FALSE(before.note(press(1010)));
  LoneKeys after;
  after.note(press(1000));
  after.note(alt(1010, true));
  EXPECT_FALSE(after.isAlone());
}

TEST(LoneKeys, FindAChordTypedFastRightAfterAnotherKey) {
  LoneKeys keys;
  keys.note(press(1000, kOther));
  keys.note(release(1001, kOther));
  keys.note(alt(1002, true));
  EXPECT_TRUE(keys.note(pressInChord(1003, kOther)));
  keys.note(release(1004, kOther));
  keys.note(alt(1005, false));
  EXPECT_TRUE(keys.isAlone());
}

// The user holds Alt, as when switching windows, and the scanner types.
TEST(LoneKeys, RefuseAScanWhileAltIsHeld) {
  LoneKeys keys;
  keys.note(alt(1000, true));
  for (unsigned i = 0; i < 10; ++i) {
    const std::uint32_t time = 2000 + i * 10;
    EXPECT_EQ(keys.note(pressInChord(time, 50 + i)), i == 0) << i;
    EXPECT_EQ(keys.isAlone(), i == 0) << i;
    keys.note(release(time + 5, 50 + i));
  }
}

TEST(LoneKeys, AreFoundWhenTheTimeWrapsAround) {
  LoneKeys far;
  far.note(press(0xFFFFFFFF, kOther));
  EXPECT_TRUE(far.note(press(60)));
  LoneKeys near;
  near.note(press(0xFFFFFFFF, kOther));
  EXPECT_FALSE(near.note(press(10)));
}

}  // namespace
}  // namespace quorvel
