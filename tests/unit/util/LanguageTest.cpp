#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "util/Language.h"

namespace quorvel {
namespace {

constexpr Bilingual kGreeting = {L"Привет", L"Hello"};

TEST(Language, SelectsTheText) {
  EXPECT_EQ(std::wstring(kGreeting.in(Language::kRussian)), L"Привет");
  EXPECT_EQ(std::wstring(kGreeting.in(Language::kEnglish)), L"Hello");
}

TEST(Language, FollowsTheRussianFlag) {
  EXPECT_EQ(languageOf(true), Language::kRussian);
  EXPECT_EQ(languageOf(false), Language::kEnglish);
}

TEST(Language, OnlyLocaleOneIsEnglish) {
  EXPECT_EQ(languageOfLocale(1), Language::kEnglish);
  for (const unsigned locale : {0u, 2u, 3u, 16u, UINT_MAX}) {
    EXPECT_EQ(languageOfLocale(locale), Language::kRussian) << locale;
  }
}

}  // namespace
}  // namespace quorvel
