// quorvel-host doctor and list at serial ports: each finding provoked for real.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tests/rig/Driver.h"
#include "tests/rig/Program.h"
#include "tools/common/SerialLine.h"

namespace {

using nlohmann::json;
using rig::Ending;
using rig::Program;
using rig::Words;
using terminal::LineSetting;
using terminal::SerialLine;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

const std::string kPath = "/dev/ttyUSB0";
const rig::Variables kEnglish = {{"LC_ALL", "C.UTF-8"}, {"DISPLAY", ""}};
const rig::Variables kRussian = {{"LC_ALL", "ru_RU.UTF-8"}, {"DISPLAY", ""}};

Words hostWords(const Words& words) {
  Words all = {rig::hostPath()};
  all.insert(all.end(), words.begin(), words.end());
  return all;
}

struct Port : SerialLine {
  explicit Port(LineSetting setting) : SerialLine(setting) { link(kPath); }
};

struct Diagnosis {
  int code;
  json object;

  std::vector<std::string> ids() const {
    std::vector<std::string> found;
    for (const json& finding : object["findings"]) found.push_back(finding["id"]);
    return found;
  }
  std::string remedy() const { return object["findings"].at(0)["remedy"]; }
  std::string text() const { return object["findings"].at(0)["text"]; }
};

// Every diagnosis is one object of this shape.
Diagnosis diagnosisOf(const Ending& ending) {
  const json object = json::parse(ending.output);
  EXPECT_EQ(object.size(), 4U);
  EXPECT_TRUE(object.at("ok").is_boolean());
  EXPECT_EQ(object["ok"] ? 0 : 1, ending.code);
  EXPECT_TRUE(object.at("bytes").is_string() || object["bytes"].is_null());
  EXPECT_TRUE(object.at("scan").is_string() || object["scan"].is_null());
  for (const json& finding : object.at("findings")) {
    EXPECT_EQ(finding.size(), 3U);
    for (const char* member : {"id", "text", "remedy"}) {
      EXPECT_NE(finding.at(member).get<std::string>(), "");
    }
  }
  return {ending.code, object};
}

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
    Port port(line);
    const std::string before = rig::outputOf({"stty", "-F", kPath, "-g"});
    Program doctor(doctorWords(options), kEnglish);
    EXPECT_EQ(doctor.errorLine(), "scan something now");
    EXPECT_TRUE(port.waitForReader(-1, rig::kPatience));
    slowly ? port.sendSlowly(bytes, std::chrono::milliseconds(20)) : port.send(bytes);
    const Ending ending = doctor.end();
    EXPECT_EQ(rig::outputOf({"stty", "-F", kPath, "-g"}), before);
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
    const Port port(LineSetting::kCooked);
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
  Port port(LineSetting::kCooked);
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
  const Port port(LineSetting::kFramed);
  const Diagnosis silent = examine({"--seconds", "1"});
  EXPECT_EQ(silent.code, 1);
  EXPECT_THAT(silent.ids(), ElementsAre("no-bytes"));
}

TEST(DoctorSerial, AScannerThatIsUnplugged) {
  std::optional<Port> port(std::in_place, LineSetting::kFramed);
  Program doctor(doctorWords({}), kEnglish);
  doctor.errorLine();
  port->waitForReader(-1, rig::kPatience);
  port.reset();
  EXPECT_THAT(diagnosisOf(doctor.end()).ids(), ElementsAre("unplugged"));
}

TEST(DoctorSerial, AMissingPortAndWhatIsNotALine) {
  EXPECT_THAT(examine({}).ids(), ElementsAre("port-missing"));
  std::filesystem::create_directory(kPath);
  EXPECT_THAT(examine({}).ids(), ElementsAre("not-a-line"));
  std::filesystem::remove(kPath);
  std::filesystem::create_symlink("/dev/null", kPath);
  EXPECT_THAT(examine({}).ids(), ElementsAre("not-a-line"));
  std::filesystem::remove(kPath);
}

TEST(DoctorSerial, AnotherReader) {
  Port port(LineSetting::kRaw);
  Program other({"cat", kPath});
  port.send("1\n");
  other.line();  // it reads
  const Diagnosis busy = examine({});
  EXPECT_EQ(busy.code, 1);
  EXPECT_THAT(busy.ids(), ElementsAre("line-busy"));
  EXPECT_THAT(busy.text(), HasSubstr("cat"));
}

TEST(DoctorSerial, AnUnknownSpeedChangesNoExitCode) {
  const Diagnosis diagnosis =
      Scan{.bytes = "123\r", .options = {"--set", "Speed=14400"}}.diagnosed();
  EXPECT_EQ(diagnosis.code, 0);
  EXPECT_THAT(diagnosis.ids(), ElementsAre("speed-unknown"));
}

TEST(DoctorSerial, APortOfAnotherUser) {
  if (geteuid() != 0 ||
      rig::run({"setpriv", "--reuid=65534", "--clear-groups", "true"}).code != 0) {
    GTEST_SKIP() << "needs to become another user";
  }
  const Port port(LineSetting::kFramed);
  rig::outputOf({"chown", "root:dialout", port.port()});
  rig::outputOf({"chmod", "660", port.port()});
  Words words = {"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"};
  const Words doctor = doctorWords({});
  words.insert(words.end(), doctor.begin(), doctor.end());
  const Diagnosis denied = diagnosisOf(rig::run(words, kEnglish));
  EXPECT_THAT(denied.ids(), ElementsAre("port-denied"));
  EXPECT_THAT(denied.remedy(), HasSubstr("adduser $USER dialout"));
}

TEST(DoctorSerial, AnInterruptedDoctorLeavesTheLineAsItWas) {
  Port port(LineSetting::kCooked);
  const std::string before = rig::outputOf({"stty", "-F", kPath, "-g"});
  Program doctor(doctorWords({}), kEnglish);
  doctor.errorLine();
  port.waitForReader(-1, rig::kPatience);
  doctor.signal(SIGINT);
  EXPECT_EQ(doctor.end().code, 1);
  EXPECT_EQ(rig::outputOf({"stty", "-F", kPath, "-g"}), before);
}

TEST(DoctorSerial, SpeaksToAPerson) {
  const Port port(LineSetting::kCooked);
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

TEST(ListCommand, ShowsPortsForAPersonAndAsJson) {
  const Port port(LineSetting::kCooked);
  std::filesystem::create_directories("/dev/serial/by-id");
  const std::string link = "/dev/serial/by-id/usb-Maker_Scanner";
  std::filesystem::create_symlink("../../ttyUSB0", link);
  const json object = json::parse(rig::run(hostWords({"list", "--json"}), kEnglish).output);
  const json expected = {{"kind", "serial"},   {"port", 129},        {"file", kPath},
                         {"name", "USB COM1"}, {"product", nullptr}, {"access", "ok"},
                         {"line", "cooked"},   {"speed", 38400},     {"used_by", json::array()},
                         {"by_id", link}};
  EXPECT_EQ(object, expected);
  const std::string text = rig::run(hostWords({"list"}), kEnglish).output;
  for (const char* part :
       {"/dev/ttyUSB0: port 129, USB COM1 (test window: USB1)", "cooked, 38400 baud",
        "! the line /dev/ttyUSB0 is cooked", "no keyboards: there is no X display"}) {
    EXPECT_THAT(text, HasSubstr(part));
  }
  EXPECT_THAT(rig::run(hostWords({"list"}), kRussian).output, HasSubstr("порт 129, USB COM1"));
  std::filesystem::remove_all("/dev/serial");
}

TEST(ListCommand, NamesThoseWhoHaveAPortOpenAndNeedsNoComponent) {
  Port port(LineSetting::kRaw);
  Program other({"cat", kPath});
  port.send("1\n");
  other.line();  // it reads
  const Ending ending = rig::run(hostWords({"--library", "/dev/null", "list", "--json"}), kEnglish);
  EXPECT_EQ(ending.code, 0);
  EXPECT_EQ(json::parse(ending.output)["used_by"].size(), 1U);
  EXPECT_THAT(rig::run(hostWords({"list"}), kEnglish).output, HasSubstr("open in cat ("));
}

}  // namespace
