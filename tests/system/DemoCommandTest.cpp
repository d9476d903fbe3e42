// quorvel-host demo.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <sstream>

#include "tests/rig/HostTool.h"

namespace {

using rig::Ending;
using rig::kEnglish;
using rig::kRussian;
using rig::Words;
using testing::ElementsAre;
using testing::HasSubstr;

std::vector<std::string> dataOf(const std::string& output) {
  std::vector<std::string> data;
  std::istringstream lines(output);
  for (std::string line; std::getline(lines, line);) {
    data.push_back(nlohmann::json::parse(line)["data"]);
  }
  return data;
}

TEST(DemoCommand, ShowsScansAndLeavesTheDevicesAlone) {
  const Ending ending = rig::run({rig::hostPath(), "demo", "--json"}, kEnglish);
  EXPECT_EQ(ending.code, 0);
  EXPECT_THAT(dataOf(ending.output),
              ElementsAre("4600051000057", "Привет из QR-кода: чай «Лето», 2 шт.",
                          "]C10104600051000057\x1D"
                          "10LOT-7\x1D"
                          "21S1",
                          "ABC-1234"));
  EXPECT_FALSE(std::filesystem::is_symlink("/dev/ttyUSB0"));
}

TEST(DemoCommand, SpeaksTheLanguageOfItsUser) {
  const Ending english = rig::run({rig::hostPath(), "demo"}, kEnglish);
  EXPECT_THAT(english.errors, HasSubstr("With your own scanner"));
  EXPECT_THAT(english.output, HasSubstr("  4600051000057\n"));
  EXPECT_THAT(rig::run({rig::hostPath(), "demo"}, kRussian).errors, HasSubstr("Со своим сканером"));
}

TEST(DemoCommand, NeedsNoRoot) {
  const Words asNobody = {"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"};
  Words mayHaveOwnDev = asNobody;
  mayHaveOwnDev.insert(mayHaveOwnDev.end(), {"unshare", "-Urm", "true"});
  if (rig::run(mayHaveOwnDev).code != 0) GTEST_SKIP() << "needs to become another user";
  Words demo = asNobody;
  demo.insert(demo.end(), {rig::hostPath(), "demo", "--json"});
  const Ending ending = rig::run(demo, kEnglish);
  EXPECT_EQ(ending.code, 0) << ending.errors;
  EXPECT_EQ(dataOf(ending.output).size(), 4U);
}

TEST(DemoCommand, SaysInOneLineWhereTheKernelAllowsNoPrivateDev) {
  const Ending ending =
      rig::run({"unshare", "-Ur", "sh", "-c",
                "echo 0 > /proc/sys/user/max_mnt_namespaces && exec \"$0\" demo", rig::hostPath()},
               kEnglish);
  EXPECT_EQ(ending.code, 1);
  EXPECT_EQ(
      ending.errors,
      "quorvel-host: this machine does not let a user have a /dev of their own: run the demo as "
      "root\n");
}

TEST(DemoCommand, TakesNoArguments) {
  EXPECT_EQ(rig::run({rig::hostPath(), "demo", "now"}, kEnglish).code, 2);
}

}  // namespace
