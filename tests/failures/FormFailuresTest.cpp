// Every failure of the system while the settings form is made.
#include <gtest/gtest.h>

#include <cerrno>
#include <optional>
#include <string>

#include "tests/failures/Subject.h"
#include "tests/rig/DeviceFiles.h"
#include "tests/rig/Environment.h"
#include "tests/rig/SharedXServer.h"

namespace {

using failures::Subject;
using rig::Call;
using rig::FailingCalls;
using rig::Sweep;

// A form takes a thousand allocations and three processes.
constexpr unsigned kManyCalls = 10000;
constexpr unsigned kSomeCalls = 61;

const Sweep kFormSweeps[] = {
    {{"no memory for the driver", Call::kNew, ENOMEM}, 1, kManyCalls, kSomeCalls},
    {{"no memory for the driver", Call::kNew, ENOMEM}, FailingCalls::kEver, kManyCalls, kSomeCalls},
    {{"no memory", Call::kAllocate, ENOMEM}, 1, 0, 1, true},
    {{"no memory", Call::kAllocate, ENOMEM}, FailingCalls::kEver, 0, 1, true},
    {{"an error of reading", Call::kRead, EIO}, 1},
    {{"reading is interrupted", Call::kRead, EINTR}, 1},
    {{"nothing to read", Call::kRead, 0}, FailingCalls::kEver},
    {{"waiting is interrupted", Call::kWait, EINTR}, 1},
    {{"no process", Call::kStartProcess, EMFILE}, 1},
    {{"no process", Call::kStartProcess, EMFILE}, FailingCalls::kEver},
    {{"no connection", Call::kConnect, ECONNREFUSED}, 1},
    {{"no connection", Call::kConnect, ECONNREFUSED}, FailingCalls::kEver},
};

class FormFailures : public rig::OnScreen, public testing::WithParamInterface<Sweep> {};

// The form that the component makes afterwards is to be the one it made before.
rig::Ends sweepForms(Subject& subject, const Sweep& failure) {
  const std::optional<std::u16string> whole = subject.parameters();
  EXPECT_TRUE(whole);
  return rig::sweep(failure, [&](unsigned first) {
    failures::leavingNothing(failure, [&] {
      {
        const FailingCalls failing(failure.failure, first, failure.times);
        subject.parameters();
      }
      EXPECT_EQ(subject.parameters(), whole);
    });
  });
}

TEST_P(FormFailures, TheNextFormIsWhole) {
  const Sweep& failure = GetParam();
  const rig::DeviceFiles ports = {"ttyS0", "ttyACM3", "ttyUSB1"};
  Subject subject;
  const rig::Ends ends = sweepForms(subject, failure);
  if (failure.failure.call == Call::kAllocate) {
    failures::expectEndsOnlyIn(ends, failures::kXlib);
  } else {
    failures::expectEndsOnlyIn(ends, {});
  }
}

INSTANTIATE_TEST_SUITE_P(All, FormFailures, testing::ValuesIn(kFormSweeps));

// Without a display, and so without Xlib, every allocation is the driver's or the C library's.
TEST(FormMemory, TheNextFormIsWhole) {
  const rig::ScopedVariable noDisplay("DISPLAY", std::nullopt);
  const rig::DeviceFiles ports = {"ttyS0", "ttyACM3", "ttyUSB1"};
  Subject subject;
  for (const unsigned times : {1U, FailingCalls::kEver}) {
    const Sweep failure = {{"no memory", Call::kAllocate, ENOMEM}, times, kManyCalls, kSomeCalls};
    failures::expectEndsOnlyIn(sweepForms(subject, failure), {});
  }
}

}  // namespace
