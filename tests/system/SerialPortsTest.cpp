// Which file a port number opens, and how the driver sets up the line.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <limits>
#include <optional>
#include <sstream>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "tests/rig/OwnProcess.h"
#include "tests/rig/Program.h"
#include "tests/rig/SerialDriver.h"
#include "tests/rig/Threads.h"
#include "tests/rig/UsbPort.h"
#include "tests/rig/WithoutPrivilege.h"

namespace {

using rig::kUsb1;
using rig::kUsb1Path;
using rig::SerialDriver;
using terminal::LineSetting;
using terminal::SerialLine;

// The first and the last port of each family.
constexpr std::pair<std::int32_t, const char*> kPortFiles[] = {
    {1, "/dev/ttyS0"},      {2, "/dev/ttyS1"},     {64, "/dev/ttyS63"},   {65, "/dev/ttyACM0"},
    {128, "/dev/ttyACM63"}, {129, "/dev/ttyUSB0"}, {130, "/dev/ttyUSB1"}, {999, "/dev/ttyUSB870"},
};

TEST(SerialPorts, EachNumberOpensItsFile) {
  SerialDriver driver;
  for (const auto& [port, path] : kPortFiles) {
    driver.lines.emplace_back(LineSetting::kFramed).link(path);
  }
  std::size_t place = 0;
  for (const auto& [port, path] : kPortFiles) {
    const std::u16string id = driver.open(port);
    driver.lines[place++].send("scan\r");
    EXPECT_EQ(driver.event().source, id) << path;
  }
}

TEST(SerialPorts, EachSpeedIsSetAndAnUnknownOneIs9600) {
  constexpr std::int32_t kKnown[] = {110,  300,   600,   1200,  2400,  4800,
                                     9600, 19200, 38400, 57600, 115200};
  constexpr std::int32_t kUnknown[] = {0,      1,  50,    14400,
                                       230400, -1, -9600, std::numeric_limits<std::int32_t>::min()};
  std::vector<std::pair<std::int32_t, std::int32_t>> speeds;  // requested and expected
  for (const std::int32_t speed : kKnown) speeds.emplace_back(speed, speed);
  for (const std::int32_t speed : kUnknown) speeds.emplace_back(speed, 9600);
  SerialDriver driver;
  std::int32_t port = kUsb1;
  for (const auto& [asked, set] : speeds) {
    driver.plugIn(port);
    driver.component.setParameter(u"Speed", asked);
    driver.open(port);
    // stty(1) prints two speeds where those of input and output differ.
    EXPECT_EQ(rig::outputOf({"stty", "-F", rig::portPath(port), "speed"}),
              std::to_string(set) + "\n")
        << asked;
    ++port;
  }
}

// The settings of a line as stty(1) saves them, without the speed.
std::string settingsOf(const std::string& path) {
  std::istringstream saved(rig::outputOf({"stty", "-F", path, "-g"}));
  std::ostringstream settings;
  std::string field;
  for (int number = 0; std::getline(saved, field, ':'); ++number) {
    constexpr int kControlModes = 2;
    if (number == kControlModes) {
      field = std::to_string(std::stoul(field, nullptr, 16) & ~static_cast<tcflag_t>(CBAUD));
    }
    settings << field << ':';
  }
  return settings.str();
}

TEST(SerialPorts, EverySettingOfALineButItsSpeedIsKept) {
  SerialDriver driver;
  const std::string paths[] = {"/dev/ttyUSB0", "/dev/ttyUSB1", "/dev/ttyUSB2", "/dev/ttyUSB3"};
  driver.plugIn(129, LineSetting::kFramed);
  driver.plugIn(130, LineSetting::kRaw);
  driver.plugIn(131, LineSetting::kCooked);
  driver.plugIn(132, LineSetting::kRaw);
  rig::outputOf({"stty", "-F", paths[3], "cstopb", "-hupcl", "ixoff", "echo", "inlcr", "istrip",
                 "min", "3", "time", "7", "intr", "^A"});
  std::vector<std::string> before;
  for (const std::string& path : paths) before.push_back(settingsOf(path));
  driver.component.setParameter(u"DataBits", 7);
  driver.component.setParameter(u"StopBit", 2);
  driver.component.setParameter(u"Speed", 115200);
  driver.component.setParameter(u"TimeoutCOM", 1);
  for (std::int32_t port = 129; port <= 132; ++port) driver.open(port);
  std::vector<std::string> after;
  for (const std::string& path : paths) after.push_back(settingsOf(path));
  EXPECT_EQ(after, before);
}

// The descriptors of this process that refer to the file.
std::vector<int> descriptorsOf(const std::string& path) {
  std::vector<int> descriptors;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    std::error_code gone;
    if (std::filesystem::read_symlink(entry, gone) == path) {
      descriptors.push_back(std::stoi(entry.path().filename()));
    }
  }
  return descriptors;
}

TEST(SerialPorts, ThePortIsOpenReadOnlyNonBlockingAndCloseOnExec) {
  SerialDriver driver;
  const SerialLine& line = driver.plugIn(kUsb1);
  driver.open(kUsb1);
  const std::vector<int> descriptors = descriptorsOf(line.port());
  ASSERT_EQ(descriptors.size(), 1U);
  const int ofEveryFile = O_LARGEFILE | 0100000;  // the kernel sets it for 64-bit processes
  EXPECT_EQ(fcntl(descriptors[0], F_GETFL) & ~ofEveryFile, O_RDONLY | O_NONBLOCK);
  EXPECT_EQ(fcntl(descriptors[0], F_GETFD), FD_CLOEXEC);
}

// In a session leader without a terminal, as a service is.
TEST(SerialPorts, ThePortDoesNotBecomeTheControllingTerminal) {
  rig::inOwnProcess([] {
    ASSERT_GE(setsid(), 0);
    SerialDriver driver;
    SerialLine& line = driver.plugIn(kUsb1, LineSetting::kCooked);
    driver.component.setParameter(u"Suffix", 10);
    driver.open(kUsb1);
    EXPECT_EQ(::open("/dev/tty", O_RDONLY | O_CLOEXEC), -1);
    // An interrupt character, which a controlling terminal would turn into a signal.
    line.send("\x03scan\n");
    EXPECT_EQ(driver.event().data, u"scan");
    // A controlling terminal that hangs up would end this process.
    driver.lines.clear();
    driver.plugIn(kUsb1, LineSetting::kCooked);
  });
}

// A descriptor of a port, which keeps unread bytes in the line while nobody else has it open.
class OpenPort {
 public:
  explicit OpenPort(const std::string& path)
      : descriptor_(::open(path.c_str(), O_RDONLY | O_NOCTTY | O_CLOEXEC)) {}
  ~OpenPort() { ::close(descriptor_); }
  OpenPort(const OpenPort&) = delete;
  OpenPort& operator=(const OpenPort&) = delete;

  void awaitWaiting(int bytes) const {
    rig::await("bytes in the line", [&] {
      int waiting = 0;
      ioctl(descriptor_, FIONREAD, &waiting);
      return waiting == bytes;
    });
  }

 private:
  int descriptor_;
};

TEST(SerialPorts, ScansFromBeforeTheOpeningAreDiscarded) {
  SerialDriver driver;
  SerialLine& framed = driver.plugIn(kUsb1);
  SerialLine& raw = driver.plugIn(130, LineSetting::kRaw);
  const OpenPort framedPort(framed.port());
  const OpenPort rawPort(raw.port());
  framed.send("old\r");
  raw.send("old");
  framedPort.awaitWaiting(4);
  rawPort.awaitWaiting(3);
  driver.open(kUsb1);
  framed.send("new\r");
  EXPECT_EQ(driver.event().data, u"new");
  // Without a suffix, old bytes would show.
  driver.component.setParameter(u"Suffix", -1);
  driver.open(130);
  raw.send("new");
  EXPECT_EQ(driver.event().data, u"new");
}

TEST(SerialPorts, APortCanBeOpenTwice) {
  SerialDriver driver;
  SerialLine& line = driver.plugIn(kUsb1);
  const std::u16string first = driver.open(kUsb1);
  const std::u16string second = driver.open(kUsb1);
  EXPECT_EQ(first, u"InputDevice#1");
  EXPECT_EQ(second, u"InputDevice#2");
  EXPECT_EQ(descriptorsOf(line.port()).size(), 2U);
  EXPECT_TRUE(driver.close(first));
  EXPECT_FALSE(driver.close(first));
  // Scans now go to the second device alone.
  line.send("1\r");
  EXPECT_EQ(driver.event().source, second);
  EXPECT_TRUE(driver.close(second));
  EXPECT_EQ(descriptorsOf(line.port()).size(), 0U);
}

void expectRefused(std::int32_t port) {
  SerialDriver driver;
  const std::size_t threads = rig::settledThreadCount();
  const std::size_t descriptors = rig::descriptorCount();
  driver.component.setParameter(u"Port", port);
  EXPECT_EQ(driver.component.open(), std::nullopt);
  EXPECT_EQ(driver.component.lastError(), u"Ошибка подключения. Проверьте доступность устройства.");
  rig::awaitThreadCount(threads);
  EXPECT_EQ(rig::descriptorCount(), descriptors);
  // A refused opening uses up a number.
  driver.plugIn(200);
  EXPECT_EQ(driver.open(200), u"InputDevice#2");
}

TEST(SerialPorts, APortThatDoesNotExistIsRefused) {
  for (const std::int32_t port : {1, 64, 65, 128, 129, std::numeric_limits<std::int32_t>::max(), -1,
                                  std::numeric_limits<std::int32_t>::min()}) {
    expectRefused(port);
  }
}

// Removes a file that a test has put into /dev.
struct Removed {
  std::string path;
  ~Removed() { std::filesystem::remove_all(path); }
};

TEST(SerialPorts, ALinkToNothingIsRefused) {
  const Removed port{kUsb1Path};
  std::filesystem::create_symlink("/dev/pts/nothing", port.path);
  expectRefused(kUsb1);
}

TEST(SerialPorts, ALinkToItselfIsRefused) {
  const Removed port{kUsb1Path};
  std::filesystem::create_symlink(port.path, port.path);
  expectRefused(kUsb1);
}

TEST(SerialPorts, AFileThatNobodyMayReadIsRefused) {
  const Removed port{kUsb1Path};
  std::ofstream(port.path).close();
  std::filesystem::permissions(port.path, std::filesystem::perms::none);
  const rig::WithoutPrivilege without;
  ASSERT_EQ(::open(port.path.c_str(), O_RDONLY), -1);
  expectRefused(kUsb1);
}

}  // namespace
