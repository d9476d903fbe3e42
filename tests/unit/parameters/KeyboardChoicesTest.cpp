#include <gtest/gtest.h>

#include <string>

#include "parameters/KeyboardChoices.h"
#include "util/DeviceNames.h"

namespace quorvel {
namespace {

XInputDevice device(const std::string& name, bool isKeyboard) {
  return {.id = 1, .rawName = name, .name = settingsDeviceName(name), .isKeyboard = isKeyboard};
}

TEST(KeyboardChoices, ListsKeyboardsOnlyInTheirOrder) {
  EXPECT_EQ(keyboardChoices({device("B", true), device("Mouse", false), device("A", true)}),
            L"<Item Value=\"B\">B</Item><Item Value=\"A\">A</Item>");
}

TEST(KeyboardChoices, ListsDuplicatesAndEmptyNames) {
  EXPECT_EQ(keyboardChoices({device("A", true), device("", true), device("A", true)}),
            L"<Item Value=\"A\">A</Item><Item Value=\"\"></Item><Item Value=\"A\">A</Item>");
}

TEST(KeyboardChoices, ReplacesWhatXmlCannotCarry) {
  EXPECT_EQ(keyboardChoices({device("<A>&\t\x01Ж", true)}),
            L"<Item Value=\" A      \"> A      </Item>");
}

TEST(KeyboardChoices, IsEmptyWithoutKeyboards) {
  EXPECT_EQ(keyboardChoices({}), L"");
  EXPECT_EQ(keyboardChoices({device("Mouse", false)}), L"");
}

}  // namespace
}  // namespace quorvel
