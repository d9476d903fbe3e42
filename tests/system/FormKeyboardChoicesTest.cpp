// Every keyboard and every key that the settings form offers does what it says, on a real X server.
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

// The index of a keyboard that has nothing special about it.
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

  // The two twins have one name in the form.
  rig::XServer server_{{"AT&T Scanner <B>", "Сканер", "Twin<", "Plain", "Twin>", "Tab\tScanner"}};
  rig::ScopedVariable display_{"DISPLAY", server_.display()};
  rig::Driver driver_;
};

TEST_F(FormKeyboardChoices, EachKeyboardOpensAsItIsListed) {
  const std::vector<std::string> names = rig::choicesOf(driver_, "KeyboardDevice");
  // Of two with one name the last is opened, whichever is chosen.
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

TEST_F(FormKeyboardChoices, EachKeyStandsForTheGroupSeparator) {
  using enum Key;
  // In the order of the choices after the first, which is no key.
  const Key keys[] = {kF1,   kF2,  kF3,     kF4,       kF5,       kF6,       kF7,
                      kF8,   kF9,  kF10,    kF11,      kF12,      kInsert,   kDelete,
                      kHome, kEnd, kPageUp, kPageDown, kCapsLock, kRightAlt, kKeypadEnter};
  const std::vector<std::string> choices = rig::choicesOf(driver_, "GSSymbolKey");
  ASSERT_EQ(choices.size(), std::size(keys) + 1);
  for (std::size_t i = 0; i < std::size(keys); ++i) {
    chooseKey(choices[i + 1]);
    EXPECT_EQ(scanWith(keys[i]), u"1\u001D2") << choices[i + 1];
  }
}

TEST_F(FormKeyboardChoices, NoKeyLeavesEveryKeyWhatItIs) {
  chooseKey(rig::choicesOf(driver_, "GSSymbolKey").at(0));
  EXPECT_EQ(scanWith(Key::kF7), u"12");
}

}  // namespace
