// Ports that other programs hold.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>

#include "tests/rig/HostTool.h"
#include "tests/rig/ScratchFolder.h"
#include "tests/rig/UsbPort.h"
#include "tools/common/SerialLine.h"

namespace {

using nlohmann::json;
using rig::Diagnosis;
using rig::kUsb1Path;
using rig::Program;
using terminal::LineSetting;
using terminal::SerialLine;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

Diagnosis examined() {
  return diagnosisOf(rig::run(
      rig::hostWords({"doctor", "--port", kUsb1Path, "--seconds", "0", "--json"}), rig::kEnglish));
}

// A program that has read from the port.
struct Reader {
  Reader(SerialLine& line, const rig::Words& words) : program(words) {
    line.send("1\n");
    program.line();
  }
  Program program;
};

class BusyPort : public testing::Test {
 protected:
  void SetUp() override { line_.link(kUsb1Path); }

  SerialLine line_{LineSetting::kFramed};
};

TEST_F(BusyPort, NamesTheProgramAndHowToEndIt) {
  Reader socat(line_, {"socat", "-u", "OPEN:" + kUsb1Path, "STDOUT"});
  const Diagnosis busy = examined();
  EXPECT_EQ(busy.code, 1);
  EXPECT_THAT(busy.ids(), ElementsAre("line-busy"));
  EXPECT_THAT(busy.text(), HasSubstr("socat (process "));
  const json listed =
      json::parse(rig::run(rig::hostWords({"list", "--json"}), rig::kEnglish).output);
  ASSERT_EQ(listed["used_by"].size(), 1U);
  const std::string kill = "kill " + std::to_string(listed["used_by"][0].get<int>());
  EXPECT_EQ(busy.remedy(), "end it: " + kill);
  EXPECT_THAT(rig::run(rig::hostWords({"list"}), rig::kEnglish).output,
              HasSubstr("open in socat ("));
  rig::outputOf({"sh", "-c", kill});
  socat.program.end();
  EXPECT_THAT(examined().ids(), IsEmpty());
}

TEST_F(BusyPort, ListenWarnsOfTheProgram) {
  const Reader socat(line_, {"socat", "-u", "OPEN:" + kUsb1Path, "STDOUT"});
  Program listen(rig::hostWords({"listen", "--port", kUsb1Path}), rig::kEnglish);
  EXPECT_THAT(listen.errorLine(), StartsWith("warning: /dev/ttyUSB0 is also read by socat"));
}

TEST_F(BusyPort, KnowsTheServicesThatTakePortsUnasked) {
  const rig::ScratchFolder folder;
  const std::string cat = rig::outputOf({"sh", "-c", "command -v cat | tr -d '\\n'"});
  for (const auto& [service, remedy] :
       {std::pair("ModemManager", "sudo systemctl mask --now ModemManager"),
        std::pair("brltty", "sudo apt-get remove brltty"),
        std::pair("agetty", "sudo systemctl disable --now serial-getty@ttyUSB0.service")}) {
    const std::string program = folder.path() / service;
    std::filesystem::create_symlink(cat, program);
    const Reader reader(line_, {program, kUsb1Path});
    const Diagnosis busy = examined();
    EXPECT_THAT(busy.ids(), ElementsAre("line-busy"));
    EXPECT_THAT(busy.text(), HasSubstr(service));
    EXPECT_EQ(busy.remedy(), remedy);
  }
}

}  // namespace
