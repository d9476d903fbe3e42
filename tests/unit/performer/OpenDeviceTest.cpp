// OpenDevice on a port that can be opened.
#include <gtest/gtest.h>

#include "tests/rig/Driver.h"
#include "tests/unit/performer/OpenPerformer.h"
#include "tools/common/SerialLine.h"

namespace quorvel {
namespace {

TEST(OpenDevice, AnIdentifierInUseKeepsItsDevice) {
  terminal::SerialLine line(terminal::LineSetting::kFramed);
  line.link("/dev/ttyUSB0");
  test::OpenPerformer performer;
  performer.comPortFactory_.port = 129;

  ASSERT_TRUE(performer.OpenDevice(L"A"));
  const InputDevice* const first = performer.devices_.at(L"A").get();
  const std::size_t descriptors = rig::descriptorCount();

  EXPECT_TRUE(performer.OpenDevice(L"A"));
  EXPECT_EQ(performer.devices_.size(), 1U);
  EXPECT_EQ(performer.devices_.at(L"A").get(), first);
  // The second device was closed before the call returned.
  EXPECT_EQ(rig::descriptorCount(), descriptors);
}

}  // namespace
}  // namespace quorvel
