#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/time.h>

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "devices/SerialFamilies.h"
#include "tests/rig/Environment.h"

namespace quorvel {
namespace {

const struct {
  std::uint32_t port;
  std::string path;
  std::wstring shortName;
} kPorts[] = {
    {1, "/dev/ttyS0", L"COM1"},
    {2, "/dev/ttyS1", L"COM2"},
    {64, "/dev/ttyS63", L"COM64"},
    {65, "/dev/ttyACM0", L"ACM1"},
    {66, "/dev/ttyACM1", L"ACM2"},
    {128, "/dev/ttyACM63", L"ACM64"},
    {129, "/dev/ttyUSB0", L"USB1"},
    {130, "/dev/ttyUSB1", L"USB2"},
    {193, "/dev/ttyUSB64", L"USB65"},
    {100129, "/dev/ttyUSB100000", L"USB100001"},
    {UINT32_MAX, "/dev/ttyUSB4294967166", L"USB4294967167"},
};

TEST(SerialFamilies, EveryPortNumberIsADeviceFileAndAName) {
  for (const auto& row : kPorts) {
    SCOPED_TRACE(testing::Message() << "port " << row.port);
    EXPECT_EQ(devicePathOf(row.port), row.path);
    EXPECT_EQ(shortNameOf(row.port), row.shortName);
  }
}

TEST(SerialFamilies, TheKeyboardsPortWrapsToAFileThatDoesNotExist) {
  EXPECT_EQ(devicePathOf(0), "/dev/ttyS4294967295");
}

TEST(SerialFamilies, PortsFollowTheFilesOfEachFamily) {
  for (std::uint32_t n = 0; n < 64; ++n) {
    EXPECT_EQ(devicePathOf(1 + n), "/dev/ttyS" + std::to_string(n));
    EXPECT_EQ(devicePathOf(65 + n), "/dev/ttyACM" + std::to_string(n));
    EXPECT_EQ(devicePathOf(129 + n), "/dev/ttyUSB" + std::to_string(n));
  }
}

TEST(SerialFamilies, ThereAreThree) {
  const struct {
    std::string prefix;
    std::uint32_t firstPort;
    std::wstring caption, shortName;
  } rows[] = {{"ttyS", 1, L"COM", L"COM"},
              {"ttyACM", 65, L"Virtual COM", L"ACM"},
              {"ttyUSB", 129, L"USB COM", L"USB"}};
  ASSERT_EQ(kSerialFamilies.size(), std::size(rows));
  for (std::size_t i = 0; i < std::size(rows); ++i) {
    EXPECT_EQ(kSerialFamilies[i].prefix, rows[i].prefix);
    EXPECT_EQ(kSerialFamilies[i].firstPort(), rows[i].firstPort);
    EXPECT_EQ(kSerialFamilies[i].caption, rows[i].caption);
    EXPECT_EQ(kSerialFamilies[i].shortName, rows[i].shortName);
  }
}

TEST(SerialFamilies, APortBelongsToOneFamily) {
  const auto prefixOf = [](std::uint32_t port) { return serialFamilyOf(port).prefix; };
  EXPECT_EQ(prefixOf(1), "ttyS");
  EXPECT_EQ(prefixOf(64), "ttyS");
  EXPECT_EQ(prefixOf(65), "ttyACM");
  EXPECT_EQ(prefixOf(128), "ttyACM");
  EXPECT_EQ(prefixOf(129), "ttyUSB");
  EXPECT_EQ(prefixOf(UINT32_MAX), "ttyUSB");
}

TEST(DeviceFileNumbers, AreReadFromTheNameBehindItsPrefix) {
  const struct {
    std::string path, prefix;
    std::int32_t number;
  } rows[] = {
      {"/dev/ttyS0", "ttyS", 0},
      {"/dev/ttyS3", "ttyS", 3},
      {"/dev/ttyS63\n", "ttyS", 63},
      {"/dev/ttyUSB12", "ttyUSB", 12},
      {"/dev/ttyS", "ttyS", 0},
      {"/dev/ttySx", "ttyS", 0},
      {"/dev/ttySAC3", "ttyS", 0},
      {"/dev/ttyUSB3", "ttyS", 0},
      {"/dev/sub/ttyS3", "ttyS", 0},
      {"ttyS3", "ttyS", 0},
      {"", "ttyS", 0},
      {"/dev/ttyS2147483647", "ttyS", INT32_MAX},
      {"/dev/ttyS2147483648", "ttyS", 0},
      {"/dev/ttyS99999999999999999999", "ttyS", 0},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(deviceFileNumber(row.path, row.prefix), row.number) << row.path;
  }
  EXPECT_EQ(deviceFileNumber("/dev/ttyS" + std::string(10000, '1'), "ttyS"), 0);
}

TEST(DeviceFiles, AreThoseWhoseNameBeginsWithThePrefix) {
  const std::vector<std::string> paths = findDeviceFiles("nul");
  EXPECT_EQ(std::ranges::count(paths, "/dev/null\n"), 1);
  for (const std::string& path : paths) {
    EXPECT_EQ(path.substr(path.rfind('/'), 4), "/nul") << path;
  }
}

TEST(DeviceFiles, AreEmptyForAnUnknownPrefix) {
  EXPECT_TRUE(findDeviceFiles("no-device-is-called-this").empty());
}

TEST(DeviceFiles, AreEmptyWhenFindCannotRun) {
  const rig::ScopedVariable nowhere("PATH", "/nonexistent");
  EXPECT_TRUE(findDeviceFiles("null").empty());
}

// A slow find(1) in a folder of its own.
class SlowFind {
 public:
  SlowFind() {
    std::ofstream(folder_ / "find") << "#!/bin/sh\n"
                                       "for n in 0 1 2 3 4 5 6 7 8 9; do\n"
                                       "  echo /dev/ttyS$n; sleep 0.01\n"
                                       "done\n";
    std::filesystem::permissions(folder_ / "find", std::filesystem::perms::owner_all);
  }
  ~SlowFind() { std::filesystem::remove_all(folder_); }
  SlowFind(const SlowFind&) = delete;
  SlowFind& operator=(const SlowFind&) = delete;

  std::string searchPath() const { return folder_.string() + ":" + std::getenv("PATH"); }

 private:
  static std::filesystem::path newFolder() {
    std::string pattern = std::filesystem::temp_directory_path() / "quorvel-XXXXXX";
    return mkdtemp(pattern.data());
  }
  const std::filesystem::path folder_ = newFolder();
};

// A timer like one of the host's, whose handler is installed without SA_RESTART.
class Interruptions {
 public:
  Interruptions() {
    struct sigaction interrupt = {};
    interrupt.sa_handler = [](int) {};
    sigaction(SIGALRM, &interrupt, &before_);
    set(1000);
  }
  ~Interruptions() {
    set(0);
    sigaction(SIGALRM, &before_, nullptr);
  }
  Interruptions(const Interruptions&) = delete;
  Interruptions& operator=(const Interruptions&) = delete;

 private:
  static void set(suseconds_t microseconds) {
    const itimerval every = {{0, microseconds}, {0, microseconds}};
    setitimer(ITIMER_REAL, &every, nullptr);
  }
  struct sigaction before_ = {};
};

TEST(DeviceFiles, AreCompleteWhenSignalsInterruptTheSearch) {
  const SlowFind find;
  const rig::ScopedVariable path("PATH", find.searchPath());
  const Interruptions interruptions;
  const std::vector<std::string> paths = findDeviceFiles("ttyS");
  EXPECT_EQ(paths.size(), 10U);
  EXPECT_EQ(paths.back(), "/dev/ttyS9\n");
}

}  // namespace
}  // namespace quorvel
