// quorvel-host list, and where it learns what it shows.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>

#include "tests/rig/HostTool.h"
#include "tests/rig/ScratchFolder.h"
#include "tests/rig/UsbPort.h"
#include "tools/common/SerialLine.h"
#include "tools/host/SerialPorts.h"

namespace {

namespace fs = std::filesystem;

using nlohmann::json;
using rig::hostWords;
using rig::kEnglish;
using rig::kRussian;
using rig::kUsb1Path;
using rig::UsbLine;
using terminal::LineSetting;
using terminal::Product;
using terminal::SerialLine;
using testing::HasSubstr;

TEST(ListCommand, ShowsPortsForAPersonAndAsJson) {
  const UsbLine port(LineSetting::kCooked);
  std::filesystem::create_directories("/dev/serial/by-id");
  const std::string link = "/dev/serial/by-id/usb-Maker_Scanner";
  std::filesystem::create_symlink("../../ttyUSB0", link);
  const json object = json::parse(rig::run(hostWords({"list", "--json"}), kEnglish).output);
  const json expected = {{"kind", "serial"},   {"port", 129},        {"file", kUsb1Path},
                         {"name", "USB COM1"}, {"product", nullptr}, {"access", "ok"},
                         {"line", "cooked"},   {"speed", 38400},     {"used_by", json::array()},
                         {"by_id", link}};
  EXPECT_EQ(object, expected);
  const std::string text = rig::run(hostWords({"list"}), kEnglish).output;
  for (const char* part :
       {"/dev/ttyUSB0: port 129, USB COM1 (test window: USB1)", "cooked, 38400 baud",
        "! the line /dev/ttyUSB0 is cooked", "no keyboards: there is no X display"}) {
    EXPECT_THAT(text, HasSubstr(part));
  }
  EXPECT_THAT(rig::run(hostWords({"list"}), kRussian).output, HasSubstr("порт 129, USB COM1"));
  std::filesystem::remove_all("/dev/serial");
}

TEST(ListCommand, NotesARawLine) {
  const UsbLine port(LineSetting::kRaw);
  EXPECT_THAT(rig::run(hostWords({"list"}), kEnglish).output,
              HasSubstr("  ! the line is raw: a scan that comes in pieces is lost\n    -> sudo "));
}

TEST(ListCommand, NeedsNoComponent) {
  EXPECT_EQ(rig::run(hostWords({"--library", "/dev/null", "list"}), kEnglish).code, 0);
}

TEST(ListCommand, FindsTheStableLinkThroughFurtherLinks) {
  fs::create_directories("/dev/serial/by-id");
  fs::create_symlink("/dev/scanner", "/dev/serial/by-id/usb-B");
  fs::create_symlink("../../scanner", "/dev/serial/by-id/usb-A");
  fs::create_symlink("serial/by-path", "/dev/scanner");
  fs::create_symlink("../ttyUSB0", "/dev/serial/by-path");
  fs::create_symlink("/dev/ttyUSB1", "/dev/serial/by-id/usb-0");
  EXPECT_EQ(terminal::stableLinkOf(129), "/dev/serial/by-id/usb-A");
  EXPECT_EQ(terminal::stableLinkOf(130), "/dev/serial/by-id/usb-0");
  EXPECT_EQ(terminal::stableLinkOf(131), "");
  fs::remove_all("/dev/serial");
  fs::remove("/dev/scanner");
}

// A copy of the part of sysfs in which ports and their devices stand.
class Sysfs : public testing::Test {
 protected:
  // A port behind an interface of a USB device, as the kernel arranges them.
  void plugIn(const std::string& name, const fs::path& interface) {
    fs::create_directories(folder_.path() / "devices" / interface);
    fs::create_directories(ttyClass_ / name);
    fs::create_symlink("../../../devices" / interface, ttyClass_ / name / "device");
  }
  void write(const fs::path& file, const std::string& line) {
    std::ofstream(folder_.path() / "devices" / file) << line << '\n';
  }
  Product productOf(std::int32_t port) { return terminal::productOf(port, ttyClass_); }

  const rig::ScratchFolder folder_;
  const fs::path ttyClass_ = folder_.path() / "class/tty";
};

TEST_F(Sysfs, TellsTheProductBehindAPort) {
  plugIn("ttyUSB0", "pci/usb1/1-1/1-1:1.0/ttyUSB0");
  plugIn("ttyACM0", "pci/usb1/1-2/1-2:1.0");
  for (const std::string device : {"pci/usb1/1-1", "pci/usb1/1-2", "pci/usb1"}) {
    write(device + "/idVendor", "0403");
  }
  write("pci/usb1/1-1/manufacturer", "FTDI");
  write("pci/usb1/1-1/product", "FT232R USB UART");
  write("pci/usb1/1-1/serial", "A50285BI");
  write("pci/usb1/1-2/product", "Сканер");
  write("pci/usb1/manufacturer", "Linux xhci-hcd");
  write("pci/usb1/product", "xHCI Host Controller");
  const Product adapter = productOf(129);
  EXPECT_EQ(adapter.maker, "FTDI");
  EXPECT_EQ(adapter.name, "FT232R USB UART");
  EXPECT_EQ(adapter.serialNumber, "A50285BI");
  // What the device does not tell is not its hub's.
  const Product scanner = productOf(65);
  EXPECT_EQ(scanner.maker, "");
  EXPECT_EQ(scanner.name, "Сканер");
  EXPECT_EQ(scanner.serialNumber, "");
}

TEST_F(Sysfs, TellsNothingOfAPortThatIsBehindNoUsbDevice) {
  plugIn("ttyS0", "platform/serial8250");
  for (const std::int32_t port : {1, 2, 129}) EXPECT_EQ(productOf(port).name, "");
}

}  // namespace
