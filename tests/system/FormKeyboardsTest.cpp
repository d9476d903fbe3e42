// The keyboards in the settings form of the built library, on a real X server.
#include <gmock/gmock.h>

#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "tests/rig/Driver.h"
#include "tests/rig/Environment.h"
#include "tests/rig/ExpectedForm.h"
#include "tests/rig/Form.h"
#include "tests/rig/XServer.h"

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::SizeIs;
using testing::UnorderedElementsAreArray;

using Names = std::vector<std::string>;

std::string item(const std::string& name) { return rig::choiceItem(name, name); }

// A server with keyboards and a component connected to it.
struct Desktop {
  explicit Desktop(const Names& keyboards) : server(keyboards) {}

  std::string document() { return rig::formOf(driver); }
  Names listed() { return rig::choicesOf(driver, "KeyboardDevice"); }

  rig::XServer server;
  rig::ScopedVariable display{"DISPLAY", server.display()};
  rig::Driver driver;
};

// The name as the form lists it: a space for each byte that it cannot carry.
std::string cleaned(std::string name) {
  for (char& byte : name) {
    const bool plain = byte >= ' ' && std::string("&<>\"'").find(byte) == std::string::npos;
    if (!plain) byte = ' ';
  }
  return name;
}

// The cleaned names of the keyboards that xinput lists, without the server's own test keyboards.
Names listedByXinput() {
  constexpr std::string_view kBranch = "\u21b3 ";
  Names names;
  std::istringstream lines(rig::outputOf({"xinput", "list", "--short"}));
  for (std::string line; std::getline(lines, line);) {
    if (line.find("[slave  keyboard") == line.npos || line.find(" XTEST ") != line.npos) continue;
    const std::size_t start = line.find(kBranch) + kBranch.size();
    const std::string padded = line.substr(start, line.rfind("\tid=") - start);
    names.push_back(cleaned(padded.substr(0, padded.find_last_not_of(' ') + 1)));
  }
  return names;
}

TEST(FormKeyboards, MarkupAndNonAsciiInANameBecomeSpaces) {
  Desktop desktop({"AT&T Scanner <B>", "O'Neill", "Сканер 2", "Plain"});
  EXPECT_TRUE(rig::areSame(desktop.document(),
                           rig::expectedForm("ru", "",
                                             item("AT T Scanner  B ") + item("O Neill") +
                                                 item("             2") + item("Plain"))));
}

TEST(FormKeyboards, ControlCharactersInANameBecomeSpaces) {
  Desktop desktop({"Tab\tScanner\x01"});
  EXPECT_TRUE(rig::isWellFormed(desktop.document()));
  EXPECT_THAT(desktop.listed(), ElementsAre("Tab Scanner "));
}

TEST(FormKeyboards, DuplicateNamesAreListedInTheServersOrder) {
  Desktop desktop({"Twin", "Other", "Twin"});
  EXPECT_THAT(desktop.listed(), ElementsAre("Twin", "Other", "Twin"));
}

TEST(FormKeyboards, AgreeWithXinput) {
  Desktop desktop({"AT&T Scanner <B>", "Сканер", "Twin", "Twin"});
  EXPECT_THAT(listedByXinput(), SizeIs(4));
  EXPECT_THAT(desktop.listed(), UnorderedElementsAreArray(listedByXinput()));
}

TEST(FormKeyboards, ListsManyKeyboards) {
  Names names;
  for (int i = 0; i < 20; ++i) names.push_back("Keyboard " + std::to_string(i));
  Desktop desktop(names);
  EXPECT_THAT(desktop.listed(), ElementsAreArray(names));
}

TEST(FormKeyboards, WithoutTheServerOnlyTheKeyboardsAreMissing) {
  Desktop desktop({"Scanner"});
  EXPECT_THAT(desktop.listed(), ElementsAre("Scanner"));
  desktop.server.kill();
  EXPECT_TRUE(rig::areSame(desktop.document(), rig::expectedForm("ru", "", "")));
}

TEST(FormKeyboards, LeaksNoDescriptors) {
  Desktop desktop({"One", "Two"});
  desktop.document();
  const std::size_t descriptors = rig::descriptorCount();
  for (int i = 0; i < 10; ++i) desktop.document();
  EXPECT_EQ(rig::descriptorCount(), descriptors);
}

TEST(FormKeyboards, InEnglishAndWellFormed) {
  Desktop desktop({"AT&T Scanner <B>"});
  const std::string document = rig::englishForm();
  EXPECT_TRUE(rig::areSame(document, rig::expectedForm("en", "", item("AT T Scanner  B ")) + "\n"));
  EXPECT_TRUE(rig::isWellFormed(document));
}

}  // namespace
