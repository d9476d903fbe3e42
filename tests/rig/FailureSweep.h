// One failure after another, each at every point where it can happen.
#pragma once

#include <functional>
#include <iosfwd>
#include <map>
#include <string>

#include "tests/rig/FailingCalls.h"

namespace rig {

struct Sweep {
  Failure failure;
  unsigned times;  // calls that fail in a row
  // Without QUORVEL_EVERY_FAILURE in the environment: only the first calls, and only each of so
  // many.
  unsigned most = 10000;
  unsigned step = 1;
  bool onlyEvery = false;  // not at all without it
};
// For what GoogleTest prints of a parameter.
void PrintTo(const Sweep& sweep, std::ostream* out);

// What ended the attempts that crashed or hung, and how many it ended. The name is that of the
// library in which it happened, leaving the C library aside.
using Ends = std::map<std::string, unsigned>;

// Runs `attempt` with the number of the first call that is to fail: 1 and up, each in a child
// process, until there are no more calls. The attempt arms FailingCalls; what it does outside of
// SubjectToFailure is exempt. The test fails when an expectation in an attempt does. Prints how
// many attempts there were.
Ends sweep(const Sweep& sweep, const std::function<void(unsigned first)>& attempt);

}  // namespace rig
