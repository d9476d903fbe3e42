// The settings form in a terminal: quorvel-host form.
#include <gmock/gmock.h>

#include <optional>
#include <string>

#include "tests/rig/DeviceFiles.h"
#include "tests/rig/Driver.h"
#include "tests/rig/Environment.h"
#include "tests/rig/Program.h"
#include "tests/rig/XServer.h"

namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class FormCommand : public testing::Test {
 protected:
  static rig::Ending run(const rig::Words& arguments) {
    rig::Words words = {rig::hostPath(), "--library", rig::englishLibraryPath(), "form"};
    words.insert(words.end(), arguments.begin(), arguments.end());
    return rig::run(words);
  }
  static std::string form(const rig::Words& arguments = {}) { return run(arguments).output; }

  rig::ScopedVariable language_{"LC_ALL", "C"};
  rig::ScopedVariable display_{"DISPLAY", std::nullopt};
};

TEST_F(FormCommand, ShowsGroupsCaptionsDefaultsAndChoices) {
  const rig::DeviceFiles files = {"ttyS0", "ttyUSB0"};
  EXPECT_THAT(form(), StartsWith(R"(Parameters

Connection parameters

  Port: Port (number, by default 0)
    * 0    Keyboard
      1    COM1
      129  USB COM1

  KeyboardDevice: HID device (text, by default "", shown when Port is 0)
      (nothing to choose from)

  Speed: Speed (number, by default 9600, shown when Port is not 0)
      110
)"));
}

TEST_F(FormCommand, ShowsDescriptionsAndFreeParameters) {
  EXPECT_THAT(form(), HasSubstr(R"(
  TimeoutCOM: COM-port Timeout (ms) (number, by default 5, shown when Port is not 0)

  COMEncoding: COM port encoding (text, by default "UTF-8", shown when Port is not 0)
      Encoding for symbols from COM port
    * "UTF-8"
      "Windows-1251"
)"));
}

TEST_F(FormCommand, QuotesNamesSoThatTheirBlanksShow) {
  const rig::XServer server({"AT&T Scanner <B>"});
  const rig::ScopedVariable display("DISPLAY", server.display());
  EXPECT_THAT(form(), HasSubstr("\n      \"AT T Scanner  B \"\n"));
}

TEST_F(FormCommand, FoldsTheSuffixesAroundTheDefault) {
  EXPECT_THAT(form(), HasSubstr(R"(
  Suffix: Suffix (number, by default 13)
      -1        <NONE>
      0 … 12    0 (NUL) … 12 (FF)
    * 13        13 (CR)
      14 … 127  14 (SO) … 127 (DEL)

)"));
}

TEST_F(FormCommand, ShowsEveryChoiceWithAll) {
  const std::string all = form({"--all"});
  EXPECT_THAT(all, HasSubstr("\n      29   29 (GS)\n"));
  EXPECT_THAT(all, HasSubstr("\n      60   60 (<)\n"));
  EXPECT_THAT(all, Not(HasSubstr("…")));
}

TEST_F(FormCommand, UsesTheUsersLanguage) {
  const rig::ScopedVariable russian("LC_ALL", "ru_RU.UTF-8");
  EXPECT_THAT(form(), HasSubstr("(число, по умолчанию 9600, видно, когда Port не равно 0)\n"));
}

TEST_F(FormCommand, RefusesUnknownArguments) {
  EXPECT_EQ(run({"--xml", "extra"}).code, 2);
  EXPECT_EQ(run({"--colour"}).errors, "quorvel-host: unknown option --colour (see --help)\n");
}

}  // namespace
