// The settings form of the built library, for several layouts of /dev.
#include <gtest/gtest.h>

#include <string>

#include "tests/rig/DeviceFiles.h"
#include "tests/rig/Driver.h"
#include "tests/rig/Environment.h"
#include "tests/rig/Form.h"
#include "tests/rig/SettingsForm.h"

namespace {

using expected::areSame;
using expected::item;
using expected::settingsForm;

class FormPorts : public testing::Test {
 protected:
  std::string form() { return rig::formOf(driver_); }

  ScopedVariable display_{"DISPLAY", std::nullopt};
  rig::Driver driver_;
};

TEST_F(FormPorts, NoneOfThem) { EXPECT_TRUE(areSame(form(), settingsForm("ru", "", ""))); }

TEST_F(FormPorts, EveryFamily) {
  const rig::DeviceFiles files = {"ttyUSB0", "ttyS1", "ttyACM0", "ttyS0"};
  EXPECT_TRUE(areSame(form(), settingsForm("ru",
                                           item("1", "COM1") + item("2", "COM2") +
                                               item("65", "Virtual COM1") + item("129", "USB COM1"),
                                           "")));
}

TEST_F(FormPorts, ByNumberAndNotByName) {
  const rig::DeviceFiles files = {"ttyS10", "ttyS2"};
  EXPECT_TRUE(areSame(form(), settingsForm("ru", item("3", "COM3") + item("11", "COM11"), "")));
}

TEST_F(FormPorts, AMatchInAFolderCountsAsTheFirst) {
  rig::DeviceFiles files;
  files.addInFolder("folder", "ttyACM7");
  EXPECT_TRUE(areSame(form(), settingsForm("ru", item("65", "Virtual COM1"), "")));
}

TEST_F(FormPorts, AMatchInAFolderAddsNothingToTheFirst) {
  rig::DeviceFiles files = {"ttyACM0", "ttyACM1"};
  files.addInFolder("folder", "ttyACM7");
  EXPECT_TRUE(areSame(
      form(), settingsForm("ru", item("65", "Virtual COM1") + item("66", "Virtual COM2"), "")));
}

TEST_F(FormPorts, ANameWithoutANumberCountsAsTheFirst) {
  const rig::DeviceFiles files = {"ttySLAB"};
  EXPECT_TRUE(areSame(form(), settingsForm("ru", item("1", "COM1"), "")));
}

TEST_F(FormPorts, DanglingLinksAreOffered) {
  rig::DeviceFiles files;
  files.addDanglingLink("ttyUSB3");
  EXPECT_TRUE(areSame(form(), settingsForm("ru", item("132", "USB COM4"), "")));
}

TEST_F(FormPorts, APortPluggedInLaterIsThereTheNextTime) {
  EXPECT_TRUE(areSame(form(), settingsForm("ru", "", "")));
  const rig::DeviceFiles files = {"ttyUSB0"};
  EXPECT_TRUE(areSame(form(), settingsForm("ru", item("129", "USB COM1"), "")));
}

TEST_F(FormPorts, WithoutFindThereAreNoPortsAndTheRestOfTheForm) {
  const rig::DeviceFiles files = {"ttyS0", "ttyUSB0"};
  const ScopedVariable path("PATH", "");
  EXPECT_TRUE(areSame(form(), settingsForm("ru", "", "")));
}

TEST_F(FormPorts, ADisplayOutOfReachLeavesTheRestOfTheForm) {
  const rig::DeviceFiles files = {"ttyS0"};
  const ScopedVariable unreachable("DISPLAY", ":nowhere");
  EXPECT_TRUE(areSame(form(), settingsForm("ru", item("1", "COM1"), "")));
}

TEST_F(FormPorts, NothingOfTheFormIsLeftBehind) {
  form();
  const std::size_t descriptors = rig::descriptorCount();
  for (int i = 0; i < 10; ++i) form();
  EXPECT_EQ(rig::descriptorCount(), descriptors);
  EXPECT_EQ(driver_.component.memory().blocksOut(), 0);
}

TEST_F(FormPorts, InEnglishAndWellFormed) {
  const rig::DeviceFiles files = {"ttyS0"};
  const std::string document = rig::englishForm();
  EXPECT_TRUE(areSame(document, settingsForm("en", item("1", "COM1"), "") + "\n"));
  EXPECT_TRUE(rig::isWellFormed(document));
}

}  // namespace
