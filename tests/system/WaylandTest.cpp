// quorvel-host in a Wayland session, where keys reach it through Xwayland.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

#include "tests/rig/Environment.h"
#include "tests/rig/HostTool.h"
#include "tests/rig/Patience.h"
#include "tests/rig/WaylandSession.h"
#include "tests/rig/XClient.h"
#include "tests/rig/XServer.h"

namespace {

using nlohmann::json;
using rig::Diagnosis;
using rig::Program;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

// No variable tells of the session: the X server does.
const rig::Variables kInSession = rig::kEnglishOnScreen;

class Wayland : public testing::Test {
 protected:
  void SetUp() override {
    // Xwayland may accept its first clients before it knows of the keyboard.
    rig::await("the session's keyboard", [&] {
      const json object = json::parse(
          rig::run(rig::hostWords({"list", "--json"}), kInSession).output, nullptr, false);
      if (object.is_object()) keyboard_ = object["name"];
      return object.is_object();
    });
  }

  // What doctor makes of a scan within this time.
  Diagnosis scanned(const std::string& seconds) {
    Program doctor(
        rig::hostWords({"doctor", "--keyboard", keyboard_, "--seconds", seconds, "--json"}),
        kInSession);
    EXPECT_EQ(doctor.errorLine(), "scan something now");
    type(server_.keyboard(0), "1\r");
    return diagnosisOf(doctor.end());
  }

  rig::XServer server_{{"Scanner"}};
  const rig::WaylandSession session_{server_.display()};
  const rig::ScopedVariable display_{"DISPLAY", session_.display()};
  std::string keyboard_;
};

TEST_F(Wayland, KeysComeWhileAWindowOfAnXClientHasTheFocus) {
  EXPECT_THAT(keyboard_, StartsWith("xwayland-keyboard:"));
  const Diagnosis without = scanned("1");
  EXPECT_EQ(without.code, 1);
  EXPECT_THAT(without.ids(), ElementsAre("wayland", "no-keys"));
  rig::XClient client(session_.display());
  const Window window = client.openWindow();
  rig::await("the focus in the window", [&] {
    Window focus = None;
    int ignored = 0;
    XGetInputFocus(client.get(), &focus, &ignored);
    return focus == window;
  });
  const Diagnosis with = scanned("60");
  EXPECT_EQ(with.code, 0);
  EXPECT_THAT(with.ids(), ElementsAre("wayland"));
  EXPECT_EQ(with.object["scan"], "1");
}

TEST_F(Wayland, IsSaidWhereverAKeyboardIsNamed) {
  const rig::Ending list = rig::run(rig::hostWords({"list"}), kInSession);
  EXPECT_THAT(list.output, HasSubstr("keyboard \"" + keyboard_ + "\" ("));
  EXPECT_THAT(list.output, HasSubstr("! this is a Wayland session: "));
  const Diagnosis missing = diagnosisOf(rig::run(
      rig::hostWords({"doctor", "--keyboard", "Scanner", "--seconds", "0", "--json"}), kInSession));
  EXPECT_THAT(missing.ids(), ElementsAre("keyboard-missing", "wayland"));
  EXPECT_THAT(missing.text(), HasSubstr("it has: \"" + keyboard_ + "\""));
  Program listen(rig::hostWords({"listen", "--keyboard", keyboard_}), kInSession);
  EXPECT_THAT(listen.errorLine(), StartsWith("warning: this is a Wayland session: "));
  EXPECT_THAT(listen.errorLine(), StartsWith("listening as "));
}

}  // namespace
