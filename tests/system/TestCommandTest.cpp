// The command quorvel-host test.
#include <gtest/gtest.h>

#include "tests/rig/Driver.h"
#include "tests/rig/Program.h"
#include "tests/rig/SharedXServer.h"

namespace {

using TestCommand = rig::OnScreen;

TEST_F(TestCommand, ShowsTheWindowUntilItIsClosed) {
  const rig::Program manager({"matchbox-window-manager"});
  rig::Program host({rig::hostPath(), "--library", rig::libraryPath(), "test"});
  // Until the window is there, nothing has that title.
  while (rig::run({"wmctrl", "-F", "-c", "Тест устройства"}, {{"LC_ALL", "C.UTF-8"}}).code != 0) {
  }
  const rig::Ending ending = host.end();
  EXPECT_EQ(ending.code, 0);
  EXPECT_EQ(ending.output, "");
  EXPECT_EQ(ending.errors, "");
}

TEST_F(TestCommand, SaysWhenThereIsNoDisplay) {
  // None is named, and nobody answers at the one that is.
  for (const char* display : {"", ":4999"}) {
    const rig::Ending ending =
        rig::run({rig::hostPath(), "test"}, {{"DISPLAY", display}, {"LC_ALL", "C"}});
    EXPECT_EQ(ending.code, 1);
    EXPECT_EQ(ending.errors, "quorvel-host: there is no X display to show the window on\n");
  }
}

TEST_F(TestCommand, TakesNoArguments) {
  EXPECT_EQ(rig::run({rig::hostPath(), "test", "now"}).code, 2);
}

}  // namespace
