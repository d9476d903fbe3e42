// The test window where GTK 2 is missing, or is not the only GTK.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

#include "tests/rig/OwnProcess.h"
#include "tests/rig/Program.h"
#include "tests/rig/ScratchFolder.h"
#include "tests/rig/TestWindow.h"

namespace {

using rig::inOwnProcess;
using rig::TestWindow;
using rig::visitWindow;

constexpr const char* kGtk2 = "libgtk-x11-2.0.so.0";

std::string otherGtk(const std::string& variable) {
  const char* const path = std::getenv(variable.c_str());
  if (!path) throw std::runtime_error(variable + " is not set: run the test by ctest");
  return path;
}

// Loads a GTK that is not the driver's into this process, as a host would have.
void loadOtherGtk(const std::string& variable, int visibility) {
  ASSERT_TRUE(dlopen(otherGtk(variable).c_str(), RTLD_NOW | visibility)) << dlerror();
}

void expectNoWindow() {
  EXPECT_THROW(visitWindow([](TestWindow&) {}), std::runtime_error);
}

// Runs a host that is not linked to GTK, with `folder` before the system's library folders.
rig::Ending runTestWith(const std::filesystem::path& folder) {
  return rig::run({rig::hostPath(), "--library", rig::libraryPath(), "test"},
                  {{"LD_LIBRARY_PATH", folder}, {"LC_ALL", "C"}});
}

using TestWindowGtk = rig::OnScreen;

TEST_F(TestWindowGtk, MayBeMissing) {
  const rig::ScratchFolder folder;
  std::ofstream(folder.path() / kGtk2) << "no library";
  const rig::Ending ending = runTestWith(folder.path());
  EXPECT_EQ(ending.code, 1);
  EXPECT_EQ(ending.output, "");
  EXPECT_EQ(
      ending.errors,
      "quorvel-host: the window needs libgtk-x11-2.0.so.0 (GTK+ 2) in this program's word size, "
      "which is not installed\n");
}

TEST_F(TestWindowGtk, MustHaveEveryFunction) {
  const rig::ScratchFolder folder;
  std::filesystem::create_symlink(otherGtk("QUORVEL_NAMELESS_GTK"), folder.path() / kGtk2);
  const rig::Ending ending = runTestWith(folder.path());
  EXPECT_EQ(ending.code, 0);
  EXPECT_EQ(ending.output, "");
  EXPECT_EQ(ending.errors, "");
}

// The host has loaded GTK 2 as well, but does not use it.
TEST_F(TestWindowGtk, MustNotMeetALaterOneOfTheHost) {
  inOwnProcess([] {
    loadOtherGtk("QUORVEL_LATER_GTK", RTLD_LOCAL);
    expectNoWindow();
    expectNoWindow();
  });
}

// A later GTK that has been linked in, or renamed.
TEST_F(TestWindowGtk, MustNotMeetALaterOneByAnotherName) {
  inOwnProcess([] {
    loadOtherGtk("QUORVEL_NAMELESS_GTK", RTLD_GLOBAL);
    expectNoWindow();
  });
}

TEST_F(TestWindowGtk, IsSharedWithAHostThatUsesItBesideALaterOne) {
  inOwnProcess([] {
    gtk_disable_setlocale();
    ASSERT_TRUE(gtk_init_check(nullptr, nullptr));
    loadOtherGtk("QUORVEL_LATER_GTK", RTLD_LOCAL);
    visitWindow([](TestWindow&) {});
  });
}

}  // namespace
