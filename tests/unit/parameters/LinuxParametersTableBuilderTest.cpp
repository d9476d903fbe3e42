// The settings form for made-up serial device files.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "devices/SerialFamilies.h"
#include "parameters/LinuxParametersTableBuilder.h"
#include "tests/rig/Environment.h"
#include "tests/rig/ExpectedForm.h"
#include "tests/rig/ScratchFolder.h"
#include "tests/rig/VirtualSlots.h"
#include "util/Handles.h"
#include "util/Text.h"

namespace quorvel {
namespace {

namespace fs = std::filesystem;
using LinuxBuilder = LinuxParametersTableBuilder;

// Replaces find(1) with a program that prints what the test wants for each pattern, leaves nothing
// else on the PATH, and removes the display.
class FakeFind {
 public:
  FakeFind() {
    std::ofstream(folder_.path() / "find")
        << "#!/bin/sh\n"
           "[ \"$1 $2\" = '/dev/ -name' ] || exit 1\n"
           "while IFS= read -r line; do printf '%s\\n' \"$line\"; done"
           " 2>/dev/null <\"${0%/*}/$3\"\n";
    fs::permissions(folder_.path() / "find", fs::perms::owner_all);
  }

  void print(const std::string& pattern, const std::string& lines) {
    std::ofstream(folder_.path() / pattern) << lines;
  }

 private:
  const rig::ScratchFolder folder_;
  rig::ScopedVariable path_{"PATH", folder_.path()};
  rig::ScopedVariable display_{"DISPLAY", std::nullopt};
};

std::wstring comPorts(const std::string& lines) {
  FakeFind find;
  find.print("ttyS*", lines);
  return LinuxBuilder(false).GetCOMDevicesList("ttyS", L"COM", 0);
}

std::wstring wideItem(const std::wstring& value, const std::wstring& text) {
  return str2wstr(rig::choiceItem(wstr2str(value), wstr2str(text)));
}

std::string formOf(bool russian) {
  LinuxBuilder builder(russian);
  builder.BuildProduct(false);
  return wstr2str(builder.GetProduct());
}

TEST(LinuxParametersTableBuilder, OverridesInTheSameSlots) {
  EXPECT_EQ(rig::slotOf(&LinuxBuilder::BuildPortPart), 3u);
  EXPECT_EQ(rig::slotOf(&LinuxBuilder::BuildKeyboardDevicePart), 4u);
  EXPECT_EQ(rig::slotOf(&LinuxBuilder::BuildCOMPortSpeedPart), 6u);
  EXPECT_EQ(sizeof(LinuxBuilder), sizeof(ParametersTableBuilder));
}

TEST(LinuxParametersTableBuilder, WholeFormWithoutDevices) {
  const FakeFind find;
  EXPECT_TRUE(rig::areSame(formOf(false), rig::expectedForm("en", "", "")));
  EXPECT_TRUE(rig::areSame(formOf(true), rig::expectedForm("ru", "", "")));
}

TEST(LinuxParametersTableBuilder, WholeFormWithEveryFamily) {
  const std::string ports = rig::choiceItem("1", "COM1") + rig::choiceItem("2", "COM2") +
                            rig::choiceItem("65", "Virtual COM1") +
                            rig::choiceItem("129", "USB COM1");
  std::string english;
  std::string russian;
  {
    FakeFind find;
    find.print("ttyS*", "/dev/ttyS1\n/dev/ttyS0\n");
    find.print("ttyACM*", "/dev/ttyACM0\n");
    find.print("ttyUSB*", "/dev/ttyUSB0\n");
    english = formOf(false);
    russian = formOf(true);
  }
  EXPECT_TRUE(rig::areSame(english, rig::expectedForm("en", ports, "")));
  EXPECT_TRUE(rig::areSame(russian, rig::expectedForm("ru", ports, "")));
  EXPECT_TRUE(rig::isWellFormed(english));
  EXPECT_TRUE(rig::isWellFormed(russian));
}

TEST(LinuxParametersTableBuilder, PortWithoutSerialDevices) {
  const FakeFind find;
  LinuxBuilder builder(false);
  builder.BuildPortPart();
  EXPECT_EQ(builder.GetProduct(),
            L"<Parameter Name=\"Port\" Caption=\"Port\" TypeValue=\"Number\" DefaultValue=\"0\">"
            L"<ChoiceList><Item Value=\"0\">Keyboard</Item></ChoiceList></Parameter>");
}

TEST(LinuxParametersTableBuilder, ExtensionPointsAreEmpty) {
  LinuxBuilder builder(false);
  builder.BuildBitsPart();
  builder.BuildPrefixPart();
  builder.BuildKeyboardTimeoutPart(true);
  builder.BuildLogParametersPart();
  EXPECT_EQ(builder.GetProduct(), L"");
}

TEST(COMDevicesList, IsEmptyWhenFindCannotRun) {
  const rig::ScopedVariable path("PATH", "");
  EXPECT_EQ(LinuxBuilder(false).GetCOMDevicesList("ttyS", L"COM", 0), L"");
}

TEST(COMDevicesList, IsSortedNumerically) {
  EXPECT_EQ(comPorts("/dev/ttyS10\n/dev/ttyS2\n"),
            wideItem(L"3", L"COM3") + wideItem(L"11", L"COM11"));
}

TEST(COMDevicesList, CountsFromTheBaseOfTheFamily) {
  FakeFind find;
  find.print("ttyUSB*", "/dev/ttyUSB7\n");
  EXPECT_EQ(LinuxBuilder(true).GetCOMDevicesList("ttyUSB", L"USB COM", 128),
            wideItem(L"136", L"USB COM8"));
}

TEST(COMDevicesList, CountsAFileWithoutANumberAsTheFirst) {
  EXPECT_EQ(comPorts("/dev/folder/ttyS5\n"), wideItem(L"1", L"COM1"));
  EXPECT_EQ(comPorts("/dev/ttySx\n"), wideItem(L"1", L"COM1"));
  EXPECT_EQ(comPorts("/dev/ttyS\n/dev/ttyS3\n"), wideItem(L"1", L"COM1") + wideItem(L"4", L"COM4"));
}

TEST(COMDevicesList, ListsEachNumberOnce) {
  EXPECT_EQ(comPorts("/dev/ttyS0\n/dev/folder/ttyS5\n/dev/ttyS0\n"), wideItem(L"1", L"COM1"));
}

TEST(COMDevicesList, IgnoresTextAfterTheNumber) {
  EXPECT_EQ(comPorts("/dev/ttyS4.lock\n"), wideItem(L"5", L"COM5"));
  EXPECT_EQ(comPorts("/dev/ttyS007\n"), wideItem(L"8", L"COM8"));
}

TEST(COMDevicesList, SplitsALineThatIsTooLong) {
  const std::string name = "/dev/ttyS6" + std::string(600, '.');
  EXPECT_EQ(comPorts(name + "\n"), wideItem(L"1", L"COM1") + wideItem(L"7", L"COM7"));
}

TEST(COMDevicesList, AcceptsNumbersOutOfRange) {
  EXPECT_EQ(comPorts("/dev/ttyS2147483647\n"), wideItem(L"2147483648", L"COM2147483648"));
  EXPECT_EQ(comPorts("/dev/ttyS99999999999999999999\n"), wideItem(L"1", L"COM1"));
  EXPECT_EQ(comPorts("/dev/ttyS-5\n"), wideItem(L"-4", L"COM-4"));
}

TEST(EventDeviceList, IsEmptyWithoutADisplay) {
  const rig::ScopedVariable none("DISPLAY", std::nullopt);
  EXPECT_EQ(LinuxBuilder(false).GetEventDeviceListEnties(), L"");
  const rig::ScopedVariable unreachable("DISPLAY", ":nowhere");
  EXPECT_EQ(LinuxBuilder(false).GetEventDeviceListEnties(), L"");
}

}  // namespace
}  // namespace quorvel
