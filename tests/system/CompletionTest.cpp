// What bash offers after a Tab.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>

#include "tests/rig/Driver.h"
#include "tests/rig/Environment.h"
#include "tests/rig/Program.h"
#include "tests/rig/XServer.h"
#include "tools/common/SerialLine.h"

namespace {

using rig::Words;
using testing::Contains;
using testing::ElementsAre;
using testing::IsSupersetOf;
using testing::Not;

// What completes the last of the words after the program's name.
std::vector<std::string> completions(const Words& words) {
  Words command = {"bash", "-c",
                   "source \"$0\"; COMP_WORDS=(\"$@\"); COMP_CWORD=$(($# - 1)); _quorvel_host; "
                   "printf '%s\\n' \"${COMPREPLY[@]}\"",
                   std::getenv("QUORVEL_COMPLETION"), rig::hostPath()};
  command.insert(command.end(), words.begin(), words.end());
  std::istringstream lines(rig::outputOf(command));
  std::vector<std::string> answers;
  for (std::string line; std::getline(lines, line);) answers.push_back(line);
  return answers;
}

TEST(Completion, CommandsAndTheirOptions) {
  EXPECT_THAT(completions({""}), IsSupersetOf({"listen", "doctor", "list", "demo", "--library"}));
  EXPECT_THAT(completions({"do"}), ElementsAre("doctor"));
  EXPECT_THAT(completions({"listen", "--"}), IsSupersetOf({"--port", "--keyboard", "--window"}));
  EXPECT_THAT(completions({"list", "--"}), Not(Contains("--port")));
  EXPECT_THAT(completions({"listen", "--set", "Suf"}), ElementsAre("Suffix="));
}

TEST(Completion, PortsOfTheMachine) {
  terminal::SerialLine line(terminal::LineSetting::kFramed);
  line.link("/dev/ttyUSB0");
  EXPECT_THAT(completions({"listen", "--port", ""}), ElementsAre("/dev/ttyUSB0"));
  EXPECT_THAT(completions({"doctor", "--port", "/dev/tty"}), ElementsAre("/dev/ttyUSB0"));
}

TEST(Completion, KeyboardsOfTheServer) {
  const rig::XServer server({"Honeywell Scanner", "Keys"});
  const rig::ScopedVariable display("DISPLAY", server.display());
  EXPECT_THAT(completions({"listen", "--keyboard", "Honey"}), ElementsAre("Honeywell\\ Scanner"));
}

}  // namespace
