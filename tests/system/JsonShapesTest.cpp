// The JSON of every command has the shape that its schema promises.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "tests/rig/Environment.h"
#include "tests/rig/HostTool.h"
#include "tests/rig/XServer.h"
#include "tools/common/SerialLine.h"

namespace {

using rig::hostWords;
using rig::kEnglish;
using terminal::LineSetting;
using terminal::SerialLine;

// What a checker that knows nothing of the program finds wrong with the lines.
std::string faultsOf(const std::string& lines, const std::string& definition) {
  rig::Program checker(
      {std::getenv("QUORVEL_JSON_CHECKER"), std::getenv("QUORVEL_JSON_SCHEMA"), definition});
  checker.write(lines);
  checker.endInput();
  const rig::Ending ending = checker.end();
  if (ending.code == 0) return {};
  return ending.output + ending.errors;
}

std::string outputOf(const rig::Words& arguments, const rig::Variables& variables = kEnglish) {
  return rig::run(hostWords(arguments), variables).output;
}

TEST(JsonShapes, TheCheckerFindsFaults) {
  EXPECT_NE(faultsOf(R"({"kind":"keyboard","name":"A","id":"7","access":"ok"})", "list"), "");
  EXPECT_EQ(faultsOf(R"({"kind":"keyboard","name":"A","id":7,"access":"ok"})", "list"), "");
}

TEST(JsonShapes, OfList) {
  const rig::XServer server({"Scanner", "\u00AB\x1B[2J\u00BB"});
  const rig::ScopedVariable display("DISPLAY", server.display());
  SerialLine framed(LineSetting::kFramed);
  framed.link("/dev/ttyUSB0");
  SerialLine cooked(LineSetting::kCooked);
  cooked.link("/dev/ttyACM0");
  SerialLine raw(LineSetting::kRaw);
  raw.link("/dev/ttyS0");
  rig::Program reader({"cat", "/dev/ttyS0"});
  raw.send("1\n");
  reader.line();
  std::filesystem::create_symlink("/dev/null", "/dev/ttyS1");
  std::filesystem::create_directories("/dev/serial/by-id");
  std::filesystem::create_symlink("/dev/ttyUSB0", "/dev/serial/by-id/usb-Scanner");
  const std::string lines = outputOf({"list", "--json"}, rig::kEnglishOnScreen);
  std::filesystem::remove("/dev/ttyS1");
  std::filesystem::remove_all("/dev/serial");
  EXPECT_THAT(lines, testing::HasSubstr("\"Scanner\""));
  EXPECT_THAT(lines, testing::HasSubstr("\"line\":\"raw\""));
  EXPECT_EQ(faultsOf(lines, "list"), "");
}

TEST(JsonShapes, OfDoctor) {
  const rig::Words serial = {"doctor", "--port", "129", "--json", "--seconds", "1"};
  std::string lines = outputOf(serial);
  {
    SerialLine line(LineSetting::kCooked);
    line.link("/dev/ttyUSB0");
    lines += outputOf(serial);
    rig::Program doctor(hostWords(serial), kEnglish);
    doctor.errorLine();
    line.waitForReader(-1, rig::kPatience);
    line.send("\xFF\x9B\x1B[2J\r");
    lines += doctor.end().output;
  }
  lines += outputOf({"doctor", "--keyboard", "\u009B\xFF", "--json"});
  EXPECT_EQ(faultsOf(lines, "doctor"), "");
}

TEST(JsonShapes, OfEvents) {
  std::string lines = outputOf({"demo", "--json"});
  SerialLine line(LineSetting::kFramed);
  line.link("/dev/ttyUSB0");
  rig::Program listen(hostWords({"listen", "--port", "129", "--json", "--count", "1"}), kEnglish);
  listen.errorLine();
  line.waitForReader(-1, rig::kPatience);
  line.send("\x1B[2J\u202E\xFF\r");
  lines += listen.end().output;
  EXPECT_EQ(faultsOf(lines, "event"), "");
}

}  // namespace
