#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "devices/KeyboardList.h"
#include "devices/XConnection.h"
#include "tests/rig/Environment.h"
#include "tests/rig/XServer.h"

namespace quorvel {
namespace {

TEST(KeyboardList, WithoutADisplayIsEmpty) {
  const XConnection none;
  EXPECT_TRUE(listXInputDevices(none).empty());
}

class KeyboardListTest : public testing::Test {
 protected:
  static std::vector<std::string> namesOf(const std::vector<XInputDevice>& devices,
                                          bool keyboards) {
    std::vector<std::string> names;
    for (const XInputDevice& device : devices) {
      if (device.isKeyboard == keyboards) names.push_back(device.name);
    }
    return names;
  }

  rig::XServer server_{{"AT&T <Scanner>", "Сканер", "Twin&", "Twin<"}};
  const rig::ScopedVariable display_{"DISPLAY", server_.display()};
  const XConnection connection_ = XConnection::open();
};

TEST_F(KeyboardListTest, HasTheServersDevicesInItsOrder) {
  const std::vector<XInputDevice> devices = listXInputDevices(connection_);
  const auto keyboards = namesOf(devices, true);
  const std::vector<std::string> ours = {"AT T  Scanner ", std::string(12, ' '), "Twin ", "Twin "};
  EXPECT_NE(std::search(keyboards.begin(), keyboards.end(), ours.begin(), ours.end()),
            keyboards.end());
  const auto others = namesOf(devices, false);
  EXPECT_NE(std::ranges::find(others, "Rig pointer"), others.end());
}

TEST_F(KeyboardListTest, KeepsTheNameThatTheServerHas) {
  std::vector<std::string> raw;
  for (const XInputDevice& device : listXInputDevices(connection_)) raw.push_back(device.rawName);
  for (const char* const name : {"AT&T <Scanner>", "Сканер", "Rig pointer"}) {
    EXPECT_NE(std::ranges::find(raw, name), raw.end()) << name;
  }
}

TEST_F(KeyboardListTest, TellsDevicesApartByTheirNumbers) {
  std::vector<int> ids;
  for (const XInputDevice& device : listXInputDevices(connection_)) {
    EXPECT_TRUE(isXInputDeviceEnabled(connection_, device.id)) << device.rawName;
    ids.push_back(device.id);
  }
  std::ranges::sort(ids);
  EXPECT_EQ(std::ranges::adjacent_find(ids), ids.end());
  EXPECT_FALSE(isXInputDeviceEnabled(connection_, ids.back() + 1));
}

TEST_F(KeyboardListTest, IsEmptyWhenTheServerIsLost) {
  EXPECT_FALSE(listXInputDevices(connection_).empty());
  server_.kill();
  EXPECT_TRUE(listXInputDevices(connection_).empty());
  EXPECT_FALSE(isXInputDeviceEnabled(connection_, 2));
}

}  // namespace
}  // namespace quorvel
