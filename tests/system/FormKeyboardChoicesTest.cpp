// Every keyboard and every key that the settings form offers works as it says, on a real X server.
#include <gtest/gtest.h>

#include <iterator>
#include <string>
#include <vector>

#include "tests/rig/Driver.h"
#include "tests/rig/Environment.h"
#include "tests/rig/Form.h"
#include "tests/rig/XServer.h"
#include "tools/common/HostText.h"

namespace {

using terminal::Key;

// The index of the keyboard with a plain name.
constexpr std::size_t kPlain = 3;

class FormKeyboardChoices : public testing::Test {
 protected:
  void chooseKey(const std::string& value) {
    driver_.component.setParameter(u"GSSymbolKey", std::stoi(value));
  }

  // Types 1, the key, 2 on a keyboard that is opened for it, and returns the scan.
  std::u16string scanWith(Key key) {
    const std::u16string id = driver_.openKeyboard(u"Plain");
    terminal::VirtualKeyboard& keyboard = server_.keyboard(kPlain);
    type(keyboard, "1");
    tap(keyboard, key);
    type(keyboard, "2\r");
    const std::u16string scan = driver_.event().data;
    driver_.component.close(id);
    return scan;
  }

  // The form shows the twins under one name.
  rig::XServer server_{{"AT&T Scanner <B>", "Сканер", "Twin<", "Plain", "Twin>", "Tab\tScanner"}};
  rig::ScopedVariable display_{"DISPLAY", server_.display()};
  rig::Driver driver_;
};

TEST_F(FormKeyboardChoices, EachKeyboardOpensAsItIsListed) {
  const std::vector<std::string> names = rig::choicesOf(driver_, "KeyboardDevice");
  // Of two with the same name the last one is opened.
  const std::size_t opened[] = {0, 1, 4, 3, 4, 5};
  ASSERT_EQ(names.size(), std::size(opened));
  for (std::size_t i = 0; i < names.size(); ++i) {
    const std::u16string id = driver_.openKeyboard(terminal::toHostText(names[i]));
    const std::string scan = "scan " + std::to_string(i);
    type(server_.keyboard(opened[i]), scan + "\r");
    EXPECT_EQ(terminal::toUtf8(driver_.event().data), scan) << names[i];
    driver_.component.close(id);
  }
}

TEST_F(FormKeyboardChoices, EachKeyBecomesTheGroupSeparator) {
  // In the order of the choices, the first of which stands for "no key".
  const Key keys[] = {
      Key::kF1,       Key::kF2,       Key::kF3,         Key::kF4,  Key::kF5,     Key::kF6,
      Key::kF7,       Key::kF8,       Key::kF9,         Key::kF10, Key::kF11,    Key::kF12,
      Key::kInsert,   Key::kDelete,   Key::kHome,       Key::kEnd, Key::kPageUp, Key::kPageDown,
      Key::kCapsLock, Key::kRightAlt, Key::kKeypadEnter};
  const std::vector<std::string> choices = rig::choicesOf(driver_, "GSSymbolKey");
  ASSERT_EQ(choices.size(), std::size(keys) + 1);
  for (std::size_t i = 0; i < std::size(keys); ++i) {
    chooseKey(choices[i + 1]);
    EXPECT_EQ(scanWith(keys[i]), u"1\u001D2") << choices[i + 1];
  }
}

TEST_F(FormKeyboardChoices, WithoutAChosenKeyKeysKeepTheirMeaning) {
  chooseKey(rig::choicesOf(driver_, "GSSymbolKey").at(0));
  EXPECT_EQ(scanWith(Key::kF7), u"12");
}

}  // namespace
