// What bash and zsh offer after a Tab.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "tests/rig/Driver.h"
#include "tests/rig/Environment.h"
#include "tests/rig/Program.h"
#include "tests/rig/ScratchFolder.h"
#include "tests/rig/XServer.h"
#include "tools/common/SerialLine.h"

namespace {

using rig::Words;
using testing::Contains;
using testing::ElementsAre;
using testing::IsSupersetOf;
using testing::Not;

// The folder of the completions.
std::string completions() { return std::getenv("QUORVEL_COMPLETIONS"); }

// With what bash completes the last of the words after the program's name.
std::vector<std::string> completions(const Words& words,
                                     const std::string& program = rig::hostPath()) {
  const std::string name = std::filesystem::path(program).filename();
  Words command = {"bash", "-c",
                   "source \"$0\"; COMP_WORDS=(\"$@\"); COMP_CWORD=$(($# - 1)); "
                   "read -r _ _ function _ < <(complete -p \"${1##*/}\"); $function; "
                   "printf '%s\\n' \"${COMPREPLY[@]}\"",
                   completions() + "/" + name + ".bash", program};
  command.insert(command.end(), words.begin(), words.end());
  std::istringstream lines(rig::outputOf(command));
  std::vector<std::string> answers;
  for (std::string line; std::getline(lines, line);) answers.push_back(line);
  return answers;
}

// What zsh makes of the program's command line.
std::string completedByZsh(const std::string& arguments,
                           const std::string& program = rig::hostPath()) {
  const rig::ScratchFolder folder;
  const std::string answer = folder.path() / "answer";
  // Completion needs a terminal.
  const Words words = {"script", "--quiet", "--return", "--command", "zsh -i", "/dev/null"};
  const rig::Ending ending = rig::run(words, {{"ZDOTDIR", std::getenv("QUORVEL_ZSH_STARTUP")},
                                              {"COMPLETIONS", completions()},
                                              {"LINE", program + " " + arguments},
                                              {"ANSWER", answer},
                                              {"TERM", "dumb"}});
  std::ifstream file(answer);
  std::string line;
  EXPECT_TRUE(std::getline(file, line)) << ending.output;
  return line.substr(std::min(line.size(), program.size() + 1));
}

TEST(Completion, ByZsh) {
  terminal::SerialLine line(terminal::LineSetting::kFramed);
  line.link("/dev/ttyUSB0");
  const rig::XServer server({"Honeywell Scanner", "Keys"});
  const rig::ScopedVariable display("DISPLAY", server.display());
  for (const auto& [typed, completed] :
       {std::pair("do", "doctor "), std::pair("listen --win", "listen --window "),
        std::pair("list --", "list --json "), std::pair("doctor --sec", "doctor --seconds "),
        std::pair("listen --set Suf", "listen --set Suffix="),
        std::pair("listen --port ", "listen --port /dev/ttyUSB0 "),
        std::pair("doctor --port /dev/tty", "doctor --port /dev/ttyUSB0 "),
        std::pair("listen --keyboard Hon", "listen --keyboard Honeywell\\ Scanner ")}) {
    EXPECT_EQ(completedByZsh(typed), completed);
  }
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

TEST(Completion, OfTheScanner) {
  const std::string scanner = rig::scannerPath();
  EXPECT_THAT(completions({""}, scanner), IsSupersetOf({"serial", "keyboard", "--version"}));
  EXPECT_THAT(completions({"serial", "--li"}, scanner), ElementsAre("--link", "--line"));
  EXPECT_THAT(completions({"serial", "--line", "r"}, scanner), ElementsAre("raw"));
  EXPECT_THAT(completions({"keyboard", "--"}, scanner), Not(Contains("--link")));
  EXPECT_EQ(completedByZsh("key", scanner), "keyboard ");
  EXPECT_EQ(completedByZsh("serial --line coo", scanner), "serial --line cooked ");
  EXPECT_EQ(completedByZsh("serial --no", scanner), "serial --no-wait ");
}

}  // namespace
