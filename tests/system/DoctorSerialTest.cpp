// quorvel-host doctor at serial ports: each finding provoked for real.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tests/rig/HostTool.h"
#include "tests/rig/ScratchFolder.h"
#include "tests/rig/UsbPort.h"
#include "tools/common/SerialLine.h"

namespace {

using rig::Diagnosis;
using rig::Ending;
using rig::hostWords;
using rig::kEnglish;
using rig::kRussian;
using rig::kUsb1Path;
using rig::Program;
using rig::UsbLine;
using rig::Words;
using terminal::LineSetting;
using terminal::SerialLine;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

Words doctorWords(const Words& more) {
  Words words = hostWords({"doctor", "--port", "129", "--json"});
  words.insert(words.end(), more.begin(), more.end());
  return words;
}

Diagnosis examine(const Words& more = {"--seconds", "0"}) {
  return diagnosisOf(rig::run(doctorWords(more), kEnglish));
}

// What doctor makes of bytes that arrive while it listens.
struct Scan {
  LineSetting line = LineSetting::kFramed;
  std::string bytes;
  Words options = {};
  bool slowly = false;

  Diagnosis diagnosed() const {
    UsbLine port(line);
    const std::string before = rig::outputOf({"stty", "-F", kUsb1Path, "-g"});
    Program doctor(doctorWords(options), kEnglish);
    EXPECT_EQ(doctor.errorLine(), "scan something now");
    EXPECT_TRUE(port.waitForReader(-1, rig::kPatience));
    slowly ? port.sendSlowly(bytes, std::chrono::milliseconds(20)) : port.send(bytes);
    const Ending ending = doctor.end();
    EXPECT_EQ(rig::outputOf({"stty", "-F", kUsb1Path, "-g"}), before);
    return diagnosisOf(ending);
  }
};

TEST(DoctorSerial, AScanThatTheDriverDelivers) {
  const Diagnosis framed = Scan{.bytes = "4600051000057\r"}.diagnosed();
  EXPECT_EQ(framed.code, 0);
  EXPECT_EQ(framed.object["scan"], "4600051000057");
  EXPECT_EQ(framed.object["bytes"], "NDYwMDA1MTAwMDA1Nw0=");
  EXPECT_THAT(framed.ids(), IsEmpty());
  // As the driver delivers them too.
  EXPECT_EQ((Scan{.bytes = "123\r", .slowly = true}.diagnosed().code), 0);
  EXPECT_EQ((Scan{LineSetting::kRaw, "123\r\n"}.diagnosed().object["scan"]), "123");
  EXPECT_EQ((Scan{LineSetting::kRaw, "123", {"--set", "Suffix=-1"}}.diagnosed().code), 0);
  EXPECT_EQ((Scan{LineSetting::kCooked, "123\r", {"--set", "Suffix=10"}}.diagnosed().code), 0);
  EXPECT_EQ((Scan{LineSetting::kFramed, "123\n", {"--set", "Suffix=10"}}.diagnosed().code), 0);
}

TEST(DoctorSerial, ACookedLine) {
  const Diagnosis examined = [] {
    const UsbLine port(LineSetting::kCooked);
    return examine();
  }();
  EXPECT_EQ(examined.code, 1);
  EXPECT_THAT(examined.ids(), ElementsAre("line-cooked"));
  const Diagnosis scanned = Scan{LineSetting::kCooked, "123\r"}.diagnosed();
  EXPECT_THAT(scanned.ids(), ElementsAre("line-cooked"));
  EXPECT_THAT(scanned.remedy(), HasSubstr("Suffix=10"));
  // A line feed as the suffix does not save what the line acts on.
  EXPECT_THAT((Scan{LineSetting::kCooked,
                    "12\x7F"
                    "3\r",
                    {"--set", "Suffix=10"}}
                   .diagnosed()
                   .ids()),
              ElementsAre("line-cooked"));
}

TEST(DoctorSerial, TheRemedyForACookedLineFramesIt) {
  UsbLine port(LineSetting::kCooked);
  const std::string remedy = examine().remedy();
  const std::string command = remedy.substr(5, remedy.find(';') - 5);  // without sudo
  rig::outputOf({"sh", "-c", command});
  EXPECT_THAT(examine().ids(), IsEmpty());
  EXPECT_THAT(rig::run(hostWords({"list", "--json"}), kEnglish).output,
              HasSubstr("\"line\":\"framed\""));
}

TEST(DoctorSerial, AScanInPiecesOnARawLine) {
  const Diagnosis slow = Scan{LineSetting::kRaw, "123456\r", {}, true}.diagnosed();
  EXPECT_EQ(slow.code, 1);
  EXPECT_THAT(slow.ids(), ElementsAre("line-raw"));
  EXPECT_EQ(slow.object["scan"], nullptr);
}

TEST(DoctorSerial, AFramedLineThatHidesTheScan) {
  const Diagnosis none = Scan{.bytes = "123"}.diagnosed();
  EXPECT_THAT(none.ids(), ElementsAre("line-framed-other-end"));
  EXPECT_EQ(none.object["bytes"], "MTIz");
  const Diagnosis other = Scan{.bytes = "123\n"}.diagnosed();
  EXPECT_THAT(other.ids(), ElementsAre("line-framed-other-end"));
  EXPECT_EQ(other.remedy(), "--set Suffix=10");
}

TEST(DoctorSerial, AScanWithoutTheExpectedEnd) {
  const Diagnosis tab = Scan{LineSetting::kRaw, "123\t"}.diagnosed();
  EXPECT_THAT(tab.ids(), ElementsAre("no-end"));
  EXPECT_EQ(tab.remedy(), "--set Suffix=9");
  EXPECT_THAT(tab.text(), HasSubstr("123␉"));
  EXPECT_EQ((Scan{LineSetting::kRaw, "123"}.diagnosed().remedy()), "--set Suffix=-1");
}

TEST(DoctorSerial, BytesThatAreNotUtf8) {
  const Diagnosis text = Scan{.bytes = "\xCF\xF0\r"}.diagnosed();
  EXPECT_EQ(text.code, 1);
  EXPECT_THAT(text.ids(), ElementsAre("not-utf8"));
  EXPECT_THAT(text.remedy(), HasSubstr("OutputDataType=2"));
  const Diagnosis base64 =
      Scan{.bytes = "\xCF\xF0\r", .options = {"--set", "OutputDataType=2"}}.diagnosed();
  EXPECT_EQ(base64.code, 0);
  EXPECT_EQ(base64.object["scan"], "z/A=");
}

TEST(DoctorSerial, AScanThatTheLineCuts) {
  EXPECT_THAT((Scan{.bytes = std::string(5000, 'x') + "\r"}.diagnosed().ids()), ElementsAre("cut"));
  EXPECT_EQ((Scan{.bytes = std::string(4095, 'x') + "\r"}.diagnosed().code), 0);
}

TEST(DoctorSerial, NothingComes) {
  const UsbLine port(LineSetting::kFramed);
  const Diagnosis silent = examine({"--seconds", "1"});
  EXPECT_EQ(silent.code, 1);
  EXPECT_THAT(silent.ids(), ElementsAre("no-bytes"));
}

// The driver waits for the next scan.
TEST(DoctorSerial, AnEndWithNothingBeforeItIsNoScan) {
  for (const LineSetting line : {LineSetting::kFramed, LineSetting::kRaw}) {
    const Diagnosis empty = Scan{line, "\r"}.diagnosed();
    EXPECT_EQ(empty.code, 1);
    EXPECT_THAT(empty.ids(), ElementsAre("no-bytes"));
    EXPECT_EQ(empty.object["bytes"], "DQ==");
    EXPECT_EQ((Scan{line, "\r123\r"}.diagnosed().object["scan"]), "123");
  }
}

TEST(DoctorSerial, AScannerThatIsUnplugged) {
  std::optional<UsbLine> port(std::in_place, LineSetting::kFramed);
  Program doctor(doctorWords({}), kEnglish);
  doctor.errorLine();
  port->waitForReader(-1, rig::kPatience);
  port.reset();
  EXPECT_THAT(diagnosisOf(doctor.end()).ids(), ElementsAre("unplugged"));
}

TEST(DoctorSerial, AMissingPortAndWhatIsNotALine) {
  EXPECT_THAT(examine({}).ids(), ElementsAre("port-missing"));
  std::filesystem::create_directory(kUsb1Path);
  EXPECT_THAT(examine({}).ids(), ElementsAre("not-a-line"));
  std::filesystem::remove(kUsb1Path);
  std::filesystem::create_symlink("/dev/null", kUsb1Path);
  EXPECT_THAT(examine({}).ids(), ElementsAre("not-a-line"));
  std::filesystem::remove(kUsb1Path);
}

TEST(DoctorSerial, AnUnknownSpeedChangesNoExitCode) {
  const Diagnosis diagnosis =
      Scan{.bytes = "123\r", .options = {"--set", "Speed=14400"}}.diagnosed();
  EXPECT_EQ(diagnosis.code, 0);
  EXPECT_THAT(diagnosis.ids(), ElementsAre("speed-unknown"));
}

// A port that only root and the group dialout may read, examined by somebody else.
class ForeignPort : public testing::Test {
 protected:
  void SetUp() override {
    if (geteuid() != 0 || rig::run(asNobody({"true"})).code != 0) {
      GTEST_SKIP() << "needs to become another user";
    }
    rig::outputOf({"chown", "root:dialout", port_.port()});
    rig::outputOf({"chmod", "660", port_.port()});
  }

  static Words asNobody(const Words& command) {
    Words words = {"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"};
    words.insert(words.end(), command.begin(), command.end());
    return words;
  }

  const UsbLine port_{LineSetting::kFramed};
};

TEST_F(ForeignPort, NamesTheGroupThatMayReadIt) {
  const Diagnosis denied = diagnosisOf(rig::run(asNobody(doctorWords({})), kEnglish));
  EXPECT_THAT(denied.ids(), ElementsAre("port-denied"));
  EXPECT_THAT(denied.text(), HasSubstr("the group dialout only, and you are not in it"));
  EXPECT_THAT(denied.remedy(), HasSubstr("adduser $USER dialout"));
}

TEST_F(ForeignPort, SaysWhenTheUserHasNotLoggedInSinceJoiningTheGroup) {
  const rig::ScratchFolder folder;
  const std::string groups = folder.path() / "group";
  const std::string user = rig::outputOf({"sh", "-c", "getent passwd 65534 | cut -d: -f1"});
  rig::outputOf({"sh", "-c", "sed \"/^dialout:/s/\\$/$1/\" /etc/group > \"$0\"", groups,
                 user.substr(0, user.find('\n'))});
  Words words = {"unshare", "--mount", "sh", "-c", "mount --bind \"$0\" /etc/group && exec \"$@\"",
                 groups};
  const Words doctor = asNobody(doctorWords({}));
  words.insert(words.end(), doctor.begin(), doctor.end());
  const Diagnosis denied = diagnosisOf(rig::run(words, kEnglish));
  EXPECT_THAT(denied.ids(), ElementsAre("port-denied"));
  EXPECT_THAT(denied.text(), HasSubstr("you are in it, but have not logged in since"));
  EXPECT_EQ(denied.remedy(), "log out and in again");
}

TEST(DoctorSerial, AnInterruptedDoctorLeavesTheLineAsItWas) {
  UsbLine port(LineSetting::kCooked);
  const std::string before = rig::outputOf({"stty", "-F", kUsb1Path, "-g"});
  Program doctor(doctorWords({}), kEnglish);
  doctor.errorLine();
  port.waitForReader(-1, rig::kPatience);
  doctor.signal(SIGINT);
  EXPECT_EQ(doctor.end().code, 1);
  EXPECT_EQ(rig::outputOf({"stty", "-F", kUsb1Path, "-g"}), before);
}

TEST(DoctorSerial, SpeaksToAPerson) {
  const UsbLine port(LineSetting::kCooked);
  const Ending english =
      rig::run(hostWords({"doctor", "--port", "129", "--seconds", "0"}), kEnglish);
  EXPECT_EQ(english.code, 1);
  EXPECT_THAT(english.output, HasSubstr("line-cooked: the line /dev/ttyUSB0 is cooked"));
  EXPECT_THAT(english.output, HasSubstr("\n  -> sudo "));
  const Ending russian =
      rig::run(hostWords({"doctor", "--port", "129", "--seconds", "0"}), kRussian);
  EXPECT_THAT(russian.output, HasSubstr("line-cooked: линия /dev/ttyUSB0"));
  EXPECT_THAT(russian.output, Not(HasSubstr("the ")));
}

TEST(DoctorSerial, WrongCommandLines) {
  for (const Words& words :
       {Words{}, Words{"--port", "/dev/null"}, Words{"--port", "129", "--set", "Speeed=1"},
        Words{"--port", "129", "--seconds", "-1"}, Words{"--port", "129", "more"}}) {
    Words all = hostWords({"doctor"});
    all.insert(all.end(), words.begin(), words.end());
    EXPECT_EQ(rig::run(all, kEnglish).code, 2);
  }
}

}  // namespace
