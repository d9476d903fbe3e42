// quorvel-host doctor and list at keyboards: each finding provoked for real.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <nlohmann/json.hpp>
#include <optional>
#include <sstream>

#include "tests/rig/Environment.h"
#include "tests/rig/HostTool.h"
#include "tests/rig/XClient.h"
#include "tests/rig/XServer.h"

namespace {

using nlohmann::json;
using rig::Diagnosis;
using rig::Ending;
using rig::kEnglishOnScreen;
using rig::Program;
using rig::Words;
using terminal::Key;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class DoctorKeyboard : public testing::Test {
 protected:
  static Words words(const Words& more, const std::string& keyboard = "Scanner") {
    Words all = rig::hostWords({"doctor", "--keyboard", keyboard, "--json"});
    all.insert(all.end(), more.begin(), more.end());
    return all;
  }

  static Diagnosis examine(const std::string& keyboard = "Scanner") {
    return diagnosisOf(rig::run(words({"--seconds", "0"}, keyboard), kEnglishOnScreen));
  }

  // What doctor makes of what the scanner does while it listens.
  template <typename Typing>
  Diagnosis typedBy(const Typing& typing, const Words& options = {},
                    const rig::Variables& variables = kEnglishOnScreen) {
    Program doctor(words(options), variables);
    EXPECT_EQ(doctor.errorLine(), "scan something now");
    typing(server_.keyboard(0));
    return diagnosisOf(doctor.end());
  }
  Diagnosis typed(const std::string& text, const Words& options = {},
                  const rig::Variables& variables = kEnglishOnScreen) {
    return typedBy([&](terminal::VirtualKeyboard& keyboard) { type(keyboard, text); }, options,
                   variables);
  }

  rig::XServer server_{{"Scanner", "Keys"}};
  const rig::ScopedVariable display_{"DISPLAY", server_.display()};
};

TEST_F(DoctorKeyboard, AScanThatTheDriverDelivers) {
  const Diagnosis scan = typed("]C1046\x1D~aB\r");
  EXPECT_EQ(scan.code, 0);
  EXPECT_THAT(scan.ids(), IsEmpty());
  EXPECT_EQ(scan.object["scan"], "]C1046\x1D~aB");
}

TEST_F(DoctorKeyboard, AnotherSuffixAndBase64) {
  const Diagnosis scan = typed("123\t", {"--set", "Suffix=9", "--set", "OutputDataType=2"});
  EXPECT_EQ(scan.code, 0);
  EXPECT_EQ(scan.object["scan"], "MTIz");
}

TEST_F(DoctorKeyboard, AMissingDisplay) {
  const rig::ScopedVariable none("DISPLAY", std::nullopt);
  EXPECT_THAT(examine().ids(), ElementsAre("display-missing"));
}

TEST_F(DoctorKeyboard, AMissingKeyboardAndTheNamesThatAreLikeIt) {
  const Diagnosis missing = examine("scanner 2000");
  EXPECT_THAT(missing.ids(), ElementsAre("keyboard-missing"));
  EXPECT_THAT(missing.text(), HasSubstr("it has: \"Scanner\", "));
}

TEST_F(DoctorKeyboard, AKeyboardThatAnotherProgramHasGrabbed) {
  rig::XClient client(server_.display());
  ASSERT_TRUE(client.grab(client.device("Scanner")));
  EXPECT_THAT(examine().ids(), ElementsAre("keyboard-grabbed"));
  client.ungrab(client.device("Scanner"));
  EXPECT_THAT(examine().ids(), IsEmpty());
}

TEST_F(DoctorKeyboard, TheFocusInAWindowOfAnotherProgram) {
  const pid_t other = std::stoi(rig::outputOf({"sh", "-c", "echo $$"}));
  rig::XClient client(server_.display());
  const Window outer = client.openWindow();
  client.setProcess(outer, other);
  client.focus(client.openWindow(outer));
  EXPECT_THAT(examine().ids(), ElementsAre("focus-elsewhere"));
  const Diagnosis scan = typed("123\r");
  EXPECT_EQ(scan.code, 1);
  EXPECT_THAT(scan.ids(), ElementsAre("focus-elsewhere"));
  // This test started doctor, as a terminal would.
  client.setProcess(outer, getpid());
  EXPECT_EQ(typed("123\r").code, 0);
}

TEST_F(DoctorKeyboard, NoKeys) {
  EXPECT_THAT(diagnosisOf(rig::run(words({"--seconds", "1"}), kEnglishOnScreen)).ids(),
              ElementsAre("no-keys"));
}

TEST_F(DoctorKeyboard, AScanWithoutTheExpectedEnd) {
  const Diagnosis tab = typed("123\t");
  EXPECT_THAT(tab.ids(), ElementsAre("no-end"));
  EXPECT_EQ(tab.remedy(), "--set Suffix=9");
  EXPECT_EQ(tab.object["bytes"], "MTIzCQ==");
  EXPECT_THAT(typed("123").ids(), ElementsAre("no-end"));
}

TEST_F(DoctorKeyboard, ALayoutThatIsNotTheScanners) {
  rig::outputOf({"setxkbmap", "ru"});
  const Diagnosis scan = typed("abc\r");
  EXPECT_EQ(scan.code, 1);
  EXPECT_THAT(scan.ids(), Contains("layout"));
  rig::outputOf({"setxkbmap", "de"});
  EXPECT_THAT(typed("xyz\r").ids(), ElementsAre("layout"));
}

TEST_F(DoctorKeyboard, AKeyInThePlaceOfAGroupSeparator) {
  const auto withF9 = [](terminal::VirtualKeyboard& keyboard) {
    type(keyboard, "12");
    tap(keyboard, Key::kF9);
    type(keyboard, "3\r");
  };
  const Diagnosis unknown = typedBy(withF9);
  EXPECT_THAT(unknown.ids(), ElementsAre("gs-as-key"));
  EXPECT_EQ(unknown.remedy(), "--set GSSymbolKey=8");
  const Diagnosis known = typedBy(withF9, {"--set", "GSSymbolKey=8"});
  EXPECT_EQ(known.code, 0);
  EXPECT_EQ(known.object["scan"],
            "12\x1D"
            "3");
}

TEST_F(DoctorKeyboard, AWaylandSessionIsANoteWhereKeysCome) {
  const rig::Variables wayland = {{"LC_ALL", "C.UTF-8"}, {"XDG_SESSION_TYPE", "wayland"}};
  const Diagnosis scan = typed("123\r", {}, wayland);
  EXPECT_EQ(scan.code, 0);
  EXPECT_THAT(scan.ids(), ElementsAre("wayland"));
}

TEST_F(DoctorKeyboard, AnInterruptedDoctorGivesTheKeyboardBack) {
  Program doctor(words({}), kEnglishOnScreen);
  doctor.errorLine();
  doctor.signal(SIGINT);
  EXPECT_EQ(doctor.end().code, 1);
  rig::XClient client(server_.display());
  EXPECT_TRUE(client.grab(client.device("Scanner")));
}

TEST_F(DoctorKeyboard, ListShowsTheKeyboardsOfTheForm) {
  const Ending ending = rig::run({rig::hostPath(), "list", "--json"}, kEnglishOnScreen);
  std::istringstream lines(ending.output);
  std::vector<std::string> names;
  for (std::string line; std::getline(lines, line);) {
    const json object = json::parse(line);
    EXPECT_EQ(object["kind"], "keyboard");
    EXPECT_EQ(object.size(), 4U);
    EXPECT_EQ(object["access"], "ok");
    EXPECT_TRUE(object["id"].is_number_integer());
    names.push_back(object["name"]);
  }
  EXPECT_THAT(names, Contains("Scanner"));
  EXPECT_THAT(names, Contains("Keys"));
  EXPECT_THAT(rig::run({rig::hostPath(), "list"}, kEnglishOnScreen).output,
              HasSubstr("keyboard \"Scanner\" ("));
}

TEST_F(DoctorKeyboard, ListenSaysWhyTheKeyboardDoesNotOpen) {
  const Ending ending =
      rig::run({rig::hostPath(), "listen", "--keyboard", "Scaner"}, kEnglishOnScreen);
  EXPECT_EQ(ending.code, 1);
  EXPECT_THAT(ending.errors, HasSubstr("\nkeyboard-missing: "));
  rig::XClient client(server_.display());
  ASSERT_TRUE(client.grab(client.device("Scanner")));
  EXPECT_THAT(
      rig::run({rig::hostPath(), "listen", "--keyboard", "Scanner"}, kEnglishOnScreen).errors,
      HasSubstr("\nkeyboard-grabbed: "));
}

}  // namespace
