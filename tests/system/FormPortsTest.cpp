// The settings form of the built library, for several layouts of /dev.
#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "tests/rig/DeviceFiles.h"
#include "tests/rig/Driver.h"
#include "tests/rig/Environment.h"
#include "tests/rig/ExpectedForm.h"
#include "tests/rig/Form.h"
#include "tests/rig/Process.h"

namespace {

using rig::areSame;
using rig::choiceItem;
using rig::expectedForm;

class FormPorts : public testing::Test {
 protected:
  std::string form() { return rig::formOf(driver_); }

  rig::ScopedVariable display_{"DISPLAY", std::nullopt};
  rig::Driver driver_;
};

TEST_F(FormPorts, NoPorts) { EXPECT_TRUE(areSame(form(), expectedForm("ru", "", ""))); }

TEST_F(FormPorts, EveryFamily) {
  const rig::DeviceFiles files = {"ttyUSB0", "ttyS1", "ttyACM0", "ttyS0"};
  EXPECT_TRUE(areSame(
      form(), expectedForm("ru",
                           choiceItem("1", "COM1") + choiceItem("2", "COM2") +
                               choiceItem("65", "Virtual COM1") + choiceItem("129", "USB COM1"),
                           "")));
}

TEST_F(FormPorts, SortedNumerically) {
  const rig::DeviceFiles files = {"ttyS10", "ttyS2"};
  EXPECT_TRUE(
      areSame(form(), expectedForm("ru", choiceItem("3", "COM3") + choiceItem("11", "COM11"), "")));
}

TEST_F(FormPorts, AMatchInASubfolderCountsAsTheFirstPort) {
  rig::DeviceFiles files;
  files.addInFolder("folder", "ttyACM7");
  EXPECT_TRUE(areSame(form(), expectedForm("ru", choiceItem("65", "Virtual COM1"), "")));
}

TEST_F(FormPorts, AMatchInASubfolderDoesNotHideTheFirstPort) {
  rig::DeviceFiles files = {"ttyACM0", "ttyACM1"};
  files.addInFolder("folder", "ttyACM7");
  EXPECT_TRUE(areSame(
      form(),
      expectedForm("ru", choiceItem("65", "Virtual COM1") + choiceItem("66", "Virtual COM2"), "")));
}

TEST_F(FormPorts, ANameWithoutANumberCountsAsTheFirstPort) {
  const rig::DeviceFiles files = {"ttySLAB"};
  EXPECT_TRUE(areSame(form(), expectedForm("ru", choiceItem("1", "COM1"), "")));
}

TEST_F(FormPorts, DanglingLinksAreListed) {
  rig::DeviceFiles files;
  files.addDanglingLink("ttyUSB3");
  EXPECT_TRUE(areSame(form(), expectedForm("ru", choiceItem("132", "USB COM4"), "")));
}

TEST_F(FormPorts, APortPluggedInLaterIsListedNextTime) {
  EXPECT_TRUE(areSame(form(), expectedForm("ru", "", "")));
  const rig::DeviceFiles files = {"ttyUSB0"};
  EXPECT_TRUE(areSame(form(), expectedForm("ru", choiceItem("129", "USB COM1"), "")));
}

TEST_F(FormPorts, NamesOfAnyContentStayOutOfTheDocument) {
  const std::string longest = "ttyS" + std::string(251, '<');
  const rig::DeviceFiles files = {"ttyS\"><Item", "ttyS&amp;\x01", "ttyUSB\xFF\xD0",
                                  longest.c_str()};
  const std::string document = form();
  EXPECT_TRUE(areSame(
      document, expectedForm("ru", choiceItem("1", "COM1") + choiceItem("129", "USB COM1"), "")));
}

TEST_F(FormPorts, WithoutFindOnlyThePortsAreMissing) {
  const rig::DeviceFiles files = {"ttyS0", "ttyUSB0"};
  const rig::ScopedVariable path("PATH", "");
  EXPECT_TRUE(areSame(form(), expectedForm("ru", "", "")));
}

TEST_F(FormPorts, AnUnreachableDisplayLeavesTheRestOfTheForm) {
  const rig::DeviceFiles files = {"ttyS0"};
  const rig::ScopedVariable unreachable("DISPLAY", ":nowhere");
  EXPECT_TRUE(areSame(form(), expectedForm("ru", choiceItem("1", "COM1"), "")));
}

TEST_F(FormPorts, LeaksNothing) {
  form();
  const std::size_t descriptors = rig::descriptorCount();
  for (int i = 0; i < 10; ++i) form();
  EXPECT_EQ(rig::descriptorCount(), descriptors);
  EXPECT_EQ(driver_.component.memory().blocksOut(), 0);
}

TEST_F(FormPorts, InEnglishAndWellFormed) {
  const rig::DeviceFiles files = {"ttyS0"};
  const std::string document = rig::englishForm();
  EXPECT_TRUE(areSame(document, expectedForm("en", choiceItem("1", "COM1"), "") + "\n"));
  EXPECT_TRUE(rig::isWellFormed(document));
}

}  // namespace
