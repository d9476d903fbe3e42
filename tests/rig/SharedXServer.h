// One X server for all tests of a process.
#pragma once

#include <gtest/gtest.h>

#include "tests/rig/XServer.h"

namespace rig {

// The keyboards of the server, as users see their names.
inline constexpr const char* kAmpersandKeyboard = "AT T Scanner  B ";  // AT&T Scanner <B>
inline constexpr const char* kPlainKeyboard = "Plain scanner";

// The indexes by which the server knows them.
inline constexpr std::size_t kAmpersandIndex = 0;
inline constexpr std::size_t kPlainIndex = 1;

// Started by the first call, which sets DISPLAY; ended after the last test.
XServer& sharedXServer();

// A test before a screen. The server is running before a test may fork.
class OnScreen : public testing::Test {
 protected:
  static void SetUpTestSuite() { sharedXServer(); }
};

}  // namespace rig
