// One X server for all tests of a program.
#pragma once

#include "tests/rig/XServer.h"

namespace rig {

// The keyboards of the server, as users see their names.
inline constexpr const char* kAmpersandKeyboard = "AT T Scanner  B ";  // AT&T Scanner <B>
inline constexpr const char* kPlainKeyboard = "Plain scanner";

// The indexes by which the server knows them.
inline constexpr std::size_t kAmpersandIndex = 0;
inline constexpr std::size_t kPlainIndex = 1;

// Started before the first test, ended after the last; DISPLAY names it.
XServer& sharedXServer();

}  // namespace rig
