// Every choice of the settings form has the effect that it promises.
#include <gmock/gmock.h>

#include <cstdint>
#include <deque>
#include <nlohmann/json.hpp>
#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "tests/rig/DeviceFiles.h"
#include "tests/rig/Driver.h"
#include "tests/rig/Environment.h"
#include "tests/rig/Form.h"
#include "tests/rig/Program.h"
#include "tests/rig/SerialDriver.h"
#include "tests/rig/XServer.h"
#include "tools/common/SerialLine.h"

namespace {

using rig::choicesOf;
using rig::parametersOf;
using terminal::FormParameter;
using terminal::LineSetting;
using terminal::SerialLine;
using terminal::toHostText;
using testing::ElementsAre;
using testing::ElementsAreArray;

constexpr std::int32_t kFirstUsbPort = 129;

// Sets a value like a host, as the type that the form states.
bool set(rig::Driver& driver, const FormParameter& parameter, const std::string& value) {
  const std::u16string name = toHostText(parameter.name);
  if (parameter.type == "String") return driver.component.setParameter(name, toHostText(value));
  return driver.component.setParameter(name, std::stoi(value));
}

TEST(FormChoices, EveryParameterAcceptsItsDefaultAndEveryChoice) {
  const rig::DeviceFiles files = {"ttyS0", "ttyACM0", "ttyUSB0"};
  rig::XServer server({"Scanner"});
  const rig::ScopedVariable display("DISPLAY", server.display());
  rig::Driver driver;
  const std::vector<FormParameter> parameters = parametersOf(driver);
  EXPECT_EQ(parameters.size(), 8u);
  for (const FormParameter& parameter : parameters) {
    EXPECT_TRUE(set(driver, parameter, parameter.defaultValue)) << parameter.name;
    if (!parameter.choices) continue;
    EXPECT_FALSE(parameter.choices->empty()) << parameter.name;
    for (const auto& choice : *parameter.choices) {
      EXPECT_TRUE(set(driver, parameter, choice.value)) << parameter.name << " " << choice.value;
    }
  }
}

TEST(FormChoices, EachPortOpensItsFile) {
  const rig::ScopedVariable display("DISPLAY", std::nullopt);
  rig::SerialDriver driver;
  const std::int32_t ports[] = {1, 11, 67, 129, 136};
  for (const std::int32_t port : ports) driver.plugIn(port);
  EXPECT_THAT(choicesOf(driver, "Port"), ElementsAre("0", "1", "11", "67", "129", "136"));
  // All are open at once, so a scan from the wrong port would show.
  for (const std::int32_t port : ports) driver.open(port);
  for (std::size_t i = 0; i < std::size(ports); ++i) {
    driver.lines[i].send("scan\r");
    EXPECT_EQ(driver.event().source, driver.ids[i]) << ports[i];
  }
}

TEST(FormChoices, EachEncodingKeepsAScanIntact) {
  rig::SerialDriver driver;
  terminal::SerialLine& line = driver.plugIn(kFirstUsbPort);
  const std::vector<std::string> encodings = choicesOf(driver, "COMEncoding");
  EXPECT_THAT(encodings, ElementsAre("UTF-8", "Windows-1251"));
  for (const std::string& encoding : encodings) {
    driver.component.setParameter(u"COMEncoding", toHostText(encoding));
    const std::u16string id = driver.open(kFirstUsbPort);
    line.send("4600051000057 Яблоко\r");
    EXPECT_EQ(driver.event().data, u"4600051000057 Яблоко") << encoding;
    driver.close(id);
  }
}

TEST(FormChoices, EachOutputDataTypeConvertsTheData) {
  rig::SerialDriver driver;
  terminal::SerialLine& line = driver.plugIn(kFirstUsbPort);
  EXPECT_THAT(choicesOf(driver, "OutputDataType"), ElementsAre("0", "2"));
  const std::pair<std::int32_t, std::u16string> expectations[] = {{0, u"scan"}, {2, u"c2Nhbg=="}};
  for (const auto& [type, data] : expectations) {
    driver.component.setParameter(u"OutputDataType", type);
    const std::u16string id = driver.open(kFirstUsbPort);
    line.send("scan\r");
    EXPECT_EQ(driver.event().data, data);
    driver.close(id);
  }
}

// A host process with a line of its own, /dev/ttyUSB`number`. Closing a port may take a second, so
// hosts close theirs in parallel.
class Host {
 public:
  // Listens with one setting until it has received `scans` scans.
  Host(int number, const std::string& setting, int scans) : line_(LineSetting::kRaw) {
    line_.link("/dev/ttyUSB" + std::to_string(number));
    program_.emplace(rig::Words{rig::hostPath(), "--library", rig::libraryPath(), "listen",
                                "--json", "--port", std::to_string(kFirstUsbPort + number), "--set",
                                setting, "--count", std::to_string(scans)});
  }

  bool waitUntilOpen() { return line_.waitForReader(-1, rig::kPatience); }
  void send(const std::string& bytes) { line_.send(bytes); }

  // Waits for the host to end and returns the scans it has received.
  std::vector<std::string> scans() {
    std::vector<std::string> scans;
    std::istringstream output(program_->end().output);
    for (std::string line; std::getline(output, line);) {
      scans.push_back(nlohmann::json::parse(line).at("data"));
    }
    return scans;
  }

 private:
  SerialLine line_;
  std::optional<rig::Program> program_;
};

TEST(FormChoices, EachSpeedIsTheSpeedOfTheLine) {
  rig::Driver driver;
  const std::vector<std::string> speeds = choicesOf(driver, "Speed");
  ASSERT_EQ(speeds.size(), 11u);
  std::deque<Host> hosts;
  for (int i = 0; i < 11; ++i) hosts.emplace_back(i, "Speed=" + speeds.at(unsigned(i)), 1);
  for (std::size_t i = 0; i < hosts.size(); ++i) {
    ASSERT_TRUE(hosts[i].waitUntilOpen());
    const std::string path = "/dev/ttyUSB" + std::to_string(i);
    EXPECT_EQ(rig::outputOf({"stty", "-F", path, "speed"}), speeds[i] + "\n");
    hosts[i].send("end\r");
  }
}

// Two messages without the suffix in them.
std::vector<std::string> messagesFor(char suffix) {
  std::vector<std::string> messages = {"12\r",
                                       "3\x1D"
                                       "4"};
  for (std::string& message : messages) std::erase(message, suffix);
  return messages;
}

TEST(FormChoices, EachSuffixEndsAMessage) {
  constexpr int kSideBySide = 32;
  for (int start = 0; start < 128; start += kSideBySide) {
    std::deque<Host> hosts;
    for (int code = start; code < start + kSideBySide; ++code) {
      hosts.emplace_back(code, "Suffix=" + std::to_string(code), 2);
    }
    for (int code = start; code < start + kSideBySide; ++code) {
      Host& host = hosts[static_cast<std::size_t>(code - start)];
      ASSERT_TRUE(host.waitUntilOpen()) << code;
      const auto suffix = static_cast<char>(code);
      for (const std::string& message : messagesFor(suffix)) host.send(message + suffix);
    }
    for (int code = start; code < start + kSideBySide; ++code) {
      Host& host = hosts[static_cast<std::size_t>(code - start)];
      EXPECT_THAT(host.scans(), ElementsAreArray(messagesFor(static_cast<char>(code)))) << code;
    }
  }
}

TEST(FormChoices, WithoutASuffixABurstIsAMessage) {
  Host host(0, "Suffix=-1", 1);
  ASSERT_TRUE(host.waitUntilOpen());
  host.send("one\rburst\r");
  EXPECT_THAT(host.scans(), ElementsAre("one\rburst\r"));
}

}  // namespace
