// One X server for all tests of a process.
#pragma once

#include <gtest/gtest.h>

#include "tests/rig/XServer.h"

namespace rig {

// The names of the server's keyboards as users see them.
inline constexpr const char* kAmpersandKeyboard = "AT T Scanner  B ";  // AT&T Scanner <B>
inline constexpr const char* kPlainKeyboard = "Plain scanner";

// Their indexes, for XServer::keyboard.
inline constexpr std::size_t kAmpersandIndex = 0;
inline constexpr std::size_t kPlainIndex = 1;

// The first call starts the server and sets DISPLAY. It runs until the last test has ended.
XServer& sharedXServer();

// A test that needs the X server. Starts it before any test can fork.
class OnScreen : public testing::Test {
 protected:
  static void SetUpTestSuite() { sharedXServer(); }
};

}  // namespace rig
