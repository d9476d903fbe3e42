// In a private /dev, with an X server whose keyboards come and go with its masters.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "dialog/DeviceWatch.h"
#include "dialog/GtkFunctions.h"
#include "tests/rig/SharedXServer.h"
#include "tests/rig/Threads.h"
#include "tests/rig/XClient.h"

namespace quorvel {
namespace {

using testing::ElementsAre;

class DeviceWatchTest : public rig::OnScreen {
 protected:
  static void SetUpTestSuite() {
    OnScreen::SetUpTestSuite();
    ASSERT_TRUE(openGtk());
  }
  ~DeviceWatchTest() override {
    for (const std::string& file : files_) std::filesystem::remove(file);
  }

  void addFile(const std::string& name) {
    files_.push_back("/dev/" + name);
    std::filesystem::create_symlink("/dev/null", files_.back());
  }

  // Runs the main loop until the condition holds.
  static void await(const char* what, const std::function<bool()>& condition) {
    rig::await(what, [&] {
      while (g_main_context_iteration(nullptr, FALSE)) continue;
      return condition();
    });
  }

  std::vector<std::uint32_t> ports_;
  int keyboardChanges_ = 0;

 private:
  std::vector<std::string> files_;
};

TEST_F(DeviceWatchTest, NoticesPortsOfEveryFamily) {
  addFile("ttyUSB0");  // before anyone watches
  const DeviceWatch watch([this](std::uint32_t port) { ports_.push_back(port); }, [] {});
  for (const char* const name : {"ttyS0", "ttyS63", "ttyACM2", "ttyUSB200"}) addFile(name);
  await("the last port", [this] { return ports_.size() == 4; });
  EXPECT_THAT(ports_, ElementsAre(1, 64, 67, 329));
}

TEST_F(DeviceWatchTest, IgnoresFilesThatAreNotPorts) {
  const DeviceWatch watch([this](std::uint32_t port) { ports_.push_back(port); }, [] {});
  for (const char* const name : {"ttyS64", "ttyACM64", "ttyUSB", "ttyUSB1x", "ttyUSB-1", "ttyX0",
                                 "xttyS0", "ttyS99999", "ttyS4294967296", "ttyUSB7"}) {
    addFile(name);
  }
  await("the last port", [this] { return !ports_.empty() && ports_.back() == 136; });
  EXPECT_THAT(ports_, ElementsAre(136));
}

// A new file may be opened only once its permissions have been set.
TEST_F(DeviceWatchTest, NoticesPermissionsOfNewPortsOnly) {
  addFile("ttyUSB0");
  const DeviceWatch watch([this](std::uint32_t port) { ports_.push_back(port); }, [] {});
  const auto touch = [](const char* file) { lchown(file, getuid(), getgid()); };
  touch("/dev/ttyUSB0");
  addFile("ttyUSB1");
  await("the port", [this] { return ports_.size() == 1; });
  touch("/dev/ttyUSB1");
  await("the port again", [this] { return ports_.size() == 2; });
  EXPECT_THAT(ports_, ElementsAre(130, 130));
}

TEST_F(DeviceWatchTest, NoticesKeyboards) {
  rig::XClient client(rig::sharedXServer().display());
  const DeviceWatch watch([](std::uint32_t) {}, [this] { ++keyboardChanges_; });
  client.addMaster("Plugged");
  await("a change", [this] { return keyboardChanges_ > 0; });
  keyboardChanges_ = 0;
  client.removeMaster(client.device("Plugged keyboard"));
  await("another", [this] { return keyboardChanges_ > 0; });
}

TEST_F(DeviceWatchTest, GoesOnWhenACallbackThrows) {
  const DeviceWatch watch(
      [this](std::uint32_t port) {
        ports_.push_back(port);
        throw std::runtime_error("no memory");
      },
      [] {});
  addFile("ttyUSB0");
  addFile("ttyUSB1");
  await("both ports", [this] { return ports_.size() == 2; });
}

}  // namespace
}  // namespace quorvel
