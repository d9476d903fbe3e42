// quorvel-host listen: which port it reads, where its output goes, and what it says when the device
// goes.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>

#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>

#include "tests/rig/HostTool.h"
#include "tests/rig/SerialDriver.h"
#include "util/Handles.h"

namespace {

namespace fs = std::filesystem;

using rig::Ending;
using rig::kEnglish;
using rig::kRussian;
using rig::Program;
using rig::Words;
using terminal::LineSetting;
using terminal::SerialLine;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

Words listenWords(const Words& more) {
  Words words = {rig::hostPath(), "listen"};
  words.insert(words.end(), more.begin(), more.end());
  return words;
}

struct Scanner : SerialLine {
  explicit Scanner(const std::string& path = "/dev/ttyUSB0") : SerialLine(LineSetting::kFramed) {
    link(path);
  }
};

// A link like those that udev rules make.
struct StableLink {
  explicit StableLink(const std::string& target) {
    fs::create_directories(fs::path(path).parent_path());
    fs::create_symlink(target, path);
  }
  ~StableLink() { fs::remove_all("/dev/serial"); }
  const std::string path = "/dev/serial/by-id/usb-Maker_Scanner_1234-if00";
};

TEST(ListenCommand, APortMayBeNamedByItsFile) {
  Scanner scanner;
  const StableLink stable("../../ttyUSB0");
  for (const std::string& name : {std::string("/dev/ttyUSB0"), std::string("ttyUSB0"), stable.path,
                                  std::string("/dev/../dev//ttyUSB0")}) {
    Program host(listenWords({"--port", name, "--count", "1"}), kEnglish);
    EXPECT_THAT(host.errorLine(), StartsWith("listening")) << name;
    scanner.waitForReader(-1, rig::kPatience);
    scanner.send("123\r");
    EXPECT_THAT(host.line(), EndsWith("  123"));
    EXPECT_EQ(host.end().code, 0);
  }
}

TEST(ListenCommand, AFileThatLeadsToNoPortIsRefused) {
  const StableLink circle("usb-Maker_Scanner_1234-if00");
  for (const std::string& name :
       {std::string("/dev/null"), std::string("/dev/nothing"), std::string("/dev/ttyUSB"),
        std::string("/dev/ttyUSB01"), std::string("/dev/ttyS64"), circle.path}) {
    const Ending english = rig::run(listenWords({"--port", name}), kEnglish);
    EXPECT_EQ(english.code, 2);
    EXPECT_EQ(english.errors, "quorvel-host: --port: " + name +
                                  " leads to no serial port (ttyS, ttyACM or ttyUSB)\n");
    EXPECT_THAT(rig::run(listenWords({"--port", name}), kRussian).errors,
                HasSubstr("не ведёт к последовательному порту"));
  }
}

TEST(ListenCommand, AFullDiskEndsIt) {
  Scanner scanner;
  Program host({"sh", "-c", "exec \"$0\" listen --port 129 > /dev/full", rig::hostPath()},
               kEnglish);
  host.errorLine();
  scanner.waitForReader(-1, rig::kPatience);
  scanner.send("123\r");
  const Ending ending = host.end();
  EXPECT_EQ(ending.code, 1);
  EXPECT_EQ(rig::noticesOf(ending),
            "quorvel-host: cannot write the output: No space left on device\n");
}

TEST(ListenCommand, AClosedPipeEndsIt) {
  Scanner scanner;
  const std::string pipe = "/dev/shm/events";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  Program host({"sh", "-c", "exec \"$0\" listen --port 129 > \"$1\"", rig::hostPath(), pipe},
               kRussian);
  std::optional<quorvel::FileDescriptor> reader(::open(pipe.c_str(), O_RDONLY | O_CLOEXEC));
  host.errorLine();
  scanner.waitForReader(-1, rig::kPatience);
  scanner.send("123\r");
  std::array<char, 100> line;
  EXPECT_GT(::read(reader->get(), line.data(), line.size()), 0);
  reader.reset();
  scanner.send("456\r");
  const Ending ending = host.end();
  fs::remove(pipe);
  EXPECT_EQ(ending.code, 1);
  EXPECT_EQ(rig::noticesOf(ending), "quorvel-host: не удалось записать вывод: канал закрыт\n");
}

TEST(ListenCommand, EveryCommandSaysWhenItsOutputCannotBeWritten) {
  for (const char* command : {"info", "form", "--version", "help listen", "--help"}) {
    const Ending ending = rig::run(
        {"sh", "-c", "exec \"$0\" " + std::string(command) + " > /dev/full", rig::hostPath()},
        kEnglish);
    EXPECT_EQ(ending.code, 1) << command;
    EXPECT_THAT(ending.errors, HasSubstr("cannot write the output")) << command;
  }
}

TEST(ListenCommand, SaysWhenTheDeviceIsBackAndScansOn) {
  std::optional<Scanner> scanner(std::in_place);
  Program host(listenWords({"--port", "129"}), kEnglish);
  host.errorLine();
  scanner->waitForReader(-1, rig::kPatience);
  scanner.reset();
  EXPECT_EQ(rig::noticeOf(host), "the device has gone: /dev/ttyUSB0");
  scanner.emplace();
  EXPECT_EQ(rig::noticeOf(host), "the device is back: /dev/ttyUSB0");
  scanner->waitForReader(-1, rig::kPatience);
  scanner->send("123\r");
  EXPECT_THAT(host.line(), EndsWith("  123"));
  host.signal(SIGINT);
  EXPECT_EQ(host.end().code, 0);
}

TEST(ListenCommand, SaysWhenTheDeviceGoes) {
  for (const auto& [locale, text] : {std::pair(kEnglish, "the device has gone: /dev/ttyUSB0"),
                                     std::pair(kRussian, "устройство отключено: /dev/ttyUSB0")}) {
    std::optional<Scanner> scanner(std::in_place);
    Program host(listenWords({"--port", "129"}), locale);
    host.errorLine();
    scanner->waitForReader(-1, rig::kPatience);
    scanner.reset();
    EXPECT_EQ(rig::noticeOf(host), text);
    host.signal(SIGINT);
    EXPECT_EQ(host.end().code, 0);
  }
}

// The component's own text, in Russian because a process starts so. The tool's diagnosis follows.
const std::string kComponentText =
    "quorvel-host: Ошибка подключения. Проверьте доступность устройства.\n";

TEST(ListenCommand, SaysWhyThePortDoesNotOpen) {
  const Ending english = rig::run(listenWords({"--port", "129"}), kEnglish);
  EXPECT_EQ(english.code, 1);
  EXPECT_THAT(english.errors,
              StartsWith(kComponentText + "port-missing: there is no /dev/ttyUSB0"));
  const Ending russian = rig::run(listenWords({"--port", "129"}), kRussian);
  EXPECT_THAT(russian.errors, StartsWith(kComponentText + "port-missing: на этой машине нет"));
}

TEST(ListenCommand, RefusesAFileThatIsNotALine) {
  fs::create_symlink("null", "/dev/ttyUSB0");
  const Ending ending = rig::run(listenWords({"--port", "129"}), kEnglish);
  fs::remove("/dev/ttyUSB0");
  EXPECT_EQ(ending.code, 1);
  EXPECT_THAT(ending.errors, StartsWith(kComponentText + "not-a-line: /dev/ttyUSB0"));
}

TEST(ListenCommand, WarnsWhenScansMayNotArrive) {
  SerialLine line(LineSetting::kCooked);
  line.link("/dev/ttyUSB0");
  Program other({"cat", "/dev/ttyUSB0"});
  line.send("1\n");
  other.line();
  Program host(listenWords({"--port", "129", "--set", "Speed=1"}), kEnglish);
  for (const char* warning :
       {"warning: /dev/ttyUSB0 is also read by cat", "warning: the line /dev/ttyUSB0 is cooked",
        "warning: the driver knows no speed 1 ", "listening"}) {
    EXPECT_THAT(host.errorLine(), StartsWith(warning));
  }
  const Ending ending = rig::run({"stty", "-F", "/dev/ttyUSB0", "raw"});
  Program second(listenWords({"--port", "129"}), kRussian);
  second.errorLine();
  EXPECT_THAT(second.errorLine(), StartsWith("внимание: /dev/ttyUSB0 читает ещё и quorvel-host"));
  EXPECT_THAT(second.errorLine(), StartsWith("внимание: линия без сборки (raw)"));
}

TEST(ListenCommand, SuggestsDoctorOnceAfterASilence) {
  std::optional<Scanner> scanner(std::in_place);
  Program host(listenWords({"--port", "129"}), kEnglish);
  host.errorLine();
  EXPECT_EQ(host.errorLine(),
            "nothing has come yet; to find out why: quorvel-host doctor --port 129");
  scanner.reset();
  EXPECT_EQ(host.errorLine(), "the device has gone: /dev/ttyUSB0");
  scanner.emplace();
  EXPECT_EQ(host.errorLine(), "the device is back: /dev/ttyUSB0");
}

TEST(ListenCommand, AScanCannotDriveTheTerminal) {
  Scanner scanner;
  Program host(listenWords({"--port", "129", "--count", "1"}), kEnglish);
  host.errorLine();
  scanner.waitForReader(-1, rig::kPatience);
  scanner.send("\x1B]0;title\x07\u009B2J\u202E1\r");
  EXPECT_THAT(host.line(), EndsWith("  ␛]0;title␇\\u009B2J\\u202E1"));
  EXPECT_EQ(host.end().code, 0);
}

TEST(ListenCommand, AnArgumentCannotDriveTheTerminal) {
  const Ending ending = rig::run(listenWords({"--port", "1", "\x1B[2J\x9B"}), kEnglish);
  EXPECT_EQ(ending.errors, "quorvel-host: unexpected argument ␛[2J\\x9B\n");
}

}  // namespace
