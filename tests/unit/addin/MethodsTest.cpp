#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "addin/Methods.h"

namespace quorvel {
namespace {

TEST(Methods, TenHaveANumber) {
  EXPECT_EQ(kMethods.size(), 10u);
  for (long number = 0; number < 10; ++number) {
    EXPECT_EQ(methodOf(number), &kMethods[static_cast<std::size_t>(number)]);
  }
  for (const long number : {-1L, 10L, 11L, LONG_MIN, LONG_MAX, long{INT_MIN}, long{INT_MAX}}) {
    EXPECT_EQ(methodOf(number), nullptr) << number;
  }
}

TEST(Methods, AreFoundByTheirWholeNameInEitherLanguage) {
  EXPECT_EQ(findMethod(L"Open"), 5);
  EXPECT_EQ(findMethod(L"Подключить"), 5);
  for (const wchar_t* const name :
       {L"open", L"OPEN", L"Ope", L"Open ", L" Open", L"Openx", L"", L"подключить", L"Подключит"}) {
    EXPECT_EQ(findMethod(name), -1) << testing::PrintToString(name);
  }
  EXPECT_EQ(findMethod(std::wstring(10000, L'x')), -1);
  EXPECT_EQ(findMethod(std::wstring_view(L"Open\0", 5)), -1);
}

}  // namespace
}  // namespace quorvel
