// quorvel-scanner that types, and quorvel-host that listens to it.
#include <gtest/gtest.h>

#include <csignal>
#include <nlohmann/json.hpp>
#include <optional>

#include "tests/rig/Driver.h"
#include "tests/rig/Environment.h"
#include "tests/rig/HostTool.h"
#include "tests/rig/Program.h"
#include "tests/rig/Threads.h"
#include "tests/rig/XClient.h"
#include "tests/rig/XServer.h"

namespace {

using rig::Driver;
using rig::Ending;
using rig::Program;
using rig::Words;

class KeyboardToolsTest : public testing::Test {
 protected:
  Ending scan(const Words& words) const {
    Words command = {rig::scannerPath(), "keyboard", "--rate", "1000"};
    command.insert(command.end(), words.begin(), words.end());
    return rig::run(command, {{"LC_ALL", "C"}});
  }

  rig::XServer server_{{"Scanner", "Keys"}};
  const rig::ScopedVariable display_{"DISPLAY", server_.display()};
};

TEST_F(KeyboardToolsTest, TypesItsTextsOnAKeyboardOfTheServer) {
  Driver driver;
  driver.openKeyboard(u"Scanner");
  const Ending ending =
      scan({"--socket", server_.keyboardSocket(0), "--escapes", "4600051000057", R"(]C1\x1d~)"});
  EXPECT_EQ(ending.code, 0) << ending.errors;
  EXPECT_EQ(driver.event().data, u"4600051000057");
  EXPECT_EQ(driver.event().data, u"]C1\x1D~");
}

TEST_F(KeyboardToolsTest, TypesThroughTheServerWhereItHasNoKeyboardOfItsOwn) {
  Driver driver;
  driver.openKeyboard(u"Virtual core XTEST keyboard");
  EXPECT_EQ(scan({"aB1"}).code, 0);
  EXPECT_EQ(driver.event().data, u"aB1");
}

TEST_F(KeyboardToolsTest, TypesAnotherSuffixSlowlyAndInBursts) {
  Driver driver;
  driver.component.setParameter(u"Suffix", '\t');
  driver.openKeyboard(u"Scanner");
  EXPECT_EQ(scan({"--socket", server_.keyboardSocket(0), "--suffix", "9", "--byte-delay", "1",
                  "--burst", "2", "1", "2"})
                .code,
            0);
  EXPECT_EQ(driver.event().data, u"1");
  EXPECT_EQ(driver.event().data, u"2");
}

TEST_F(KeyboardToolsTest, TypesLinesAsTheyCome) {
  Driver driver;
  driver.openKeyboard(u"Scanner");
  Program scanner({rig::scannerPath(), "keyboard", "--socket", server_.keyboardSocket(0)});
  scanner.write("one\n");
  EXPECT_EQ(driver.event().data, u"one");
  scanner.write("two\n");
  EXPECT_EQ(driver.event().data, u"two");
  scanner.endInput();
  EXPECT_EQ(scanner.end().code, 0);
}

TEST_F(KeyboardToolsTest, RefusesTextThatNoKeyTypes) {
  const Ending ending = scan({"--socket", server_.keyboardSocket(0), "\xD0\xA9"});
  EXPECT_EQ(ending.code, 2);
  EXPECT_EQ(ending.errors, "quorvel-scanner: no key types the character with code 208\n");
}

TEST_F(KeyboardToolsTest, SaysWhatIsMissing) {
  EXPECT_EQ(scan({"--socket", "/no/such/socket", "1"}).code, 1);
  const rig::ScopedVariable display("DISPLAY", std::nullopt);
  const Ending ending = scan({"1"});
  EXPECT_EQ(ending.code, 1);
  EXPECT_EQ(ending.errors, "quorvel-scanner: cannot open the display\n");
}

TEST_F(KeyboardToolsTest, TheHostPrintsWhatIsTyped) {
  Program host({rig::hostPath(), "--library", rig::libraryPath(), "listen", "--keyboard", "Scanner",
                "--json", "--count", "2"});
  host.errorLine();  // it is listening
  terminal::type(server_.keyboard(0), "4600051000057\r");
  EXPECT_EQ(nlohmann::json::parse(host.line())["data"], "4600051000057");
  terminal::type(server_.keyboard(0), "2\r");
  EXPECT_EQ(nlohmann::json::parse(host.line())["data"], "2");
  EXPECT_EQ(host.end().code, 0);
}

TEST_F(KeyboardToolsTest, TheHostSaysWhenTheKeyboardGoesAndWhenItIsBack) {
  Program host({rig::hostPath(), "--library", rig::libraryPath(), "listen", "--keyboard", "Keys"},
               {{"LC_ALL", "C.UTF-8"}});
  host.errorLine();
  std::optional<rig::XClient> client(server_.display());
  client->setEnabled(client->device("Keys"), false);
  EXPECT_EQ(rig::noticeOf(host), "the device has gone: Keys");
  client->setEnabled(client->device("Keys"), true);
  EXPECT_EQ(rig::noticeOf(host), "the device is back: Keys");
  client.reset();
  server_.kill();
  EXPECT_EQ(rig::noticeOf(host), "the device has gone: Keys");
  host.signal(SIGINT);
  EXPECT_EQ(host.end().code, 0);
}

TEST_F(KeyboardToolsTest, WithAWindowOfItsOwnTheHostHearsTheScanner) {
  const rig::Program manager({"matchbox-window-manager"});
  // It takes over the windows that are there when it starts, and they lose the focus.
  rig::await("the window manager", [] { return rig::run({"wmctrl", "-m"}).code == 0; });
  const pid_t other = std::stoi(rig::outputOf({"sh", "-c", "echo $$"}));
  rig::XClient client(server_.display());
  const Window outer = client.openWindow();
  client.setProcess(outer, other);
  client.focus(client.openWindow(outer));
  Program host({rig::hostPath(), "listen", "--keyboard", "Scanner", "--window", "--json"},
               {{"LC_ALL", "C.UTF-8"}});
  host.errorLine();
  const auto title = [](const char* text) {
    return rig::run({"wmctrl", "-a", text}, {{"LC_ALL", "C.UTF-8"}}).code == 0;
  };
  rig::await("the host's window", [&] { return title("quorvel-host: click here"); });
  rig::await("the focus", [&] { return client.hasFocus(host.process()); });
  terminal::type(server_.keyboard(0), "4600051000057\r");
  EXPECT_EQ(nlohmann::json::parse(host.line())["data"], "4600051000057");
  // The window shows the last scan, and closing it ends the host.
  rig::await("the scan in the window", [&] { return title("4600051000057"); });
  rig::run({"wmctrl", "-c", "4600051000057"}, {{"LC_ALL", "C.UTF-8"}});
  EXPECT_EQ(host.end().code, 0);
}

TEST_F(KeyboardToolsTest, TheHostEndsAtASignal) {
  Program host({rig::hostPath(), "--library", rig::libraryPath(), "listen", "--keyboard", "Keys"});
  host.errorLine();
  host.signal(SIGINT);
  EXPECT_EQ(host.end().code, 0);
}

TEST_F(KeyboardToolsTest, TheHostSaysWhenThereIsNoSuchKeyboard) {
  const Ending ending =
      rig::run({rig::hostPath(), "--library", rig::libraryPath(), "listen", "--keyboard", "None"});
  EXPECT_EQ(ending.code, 1);
  EXPECT_NE(ending.errors, "");
}

}  // namespace
