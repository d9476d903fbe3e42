// quorvel-scanner as its users run it, read by the driver or by the test itself.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "tests/rig/HostCodes.h"
#include "tests/rig/HostTool.h"
#include "tests/rig/Program.h"
#include "tests/rig/RawDevice.h"
#include "tests/rig/Refusals.h"
#include "tests/rig/UsbPort.h"

namespace {

using rig::Ending;
using rig::kEnglish;
using rig::kRussian;
using rig::kUsb1;
using rig::kUsb1Path;
using rig::Program;
using rig::Refusal;
using rig::SerialDriver;
using rig::Words;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

// As fast as possible.
const Words kFast = {"--rate", "1000000"};

Words scannerWords(const Words& more, const Words& before = {}) {
  Words words = {rig::scannerPath()};
  words.insert(words.end(), before.begin(), before.end());
  words.insert(words.end(), {"serial", "--link", kUsb1Path});
  words.insert(words.end(), kFast.begin(), kFast.end());
  words.insert(words.end(), more.begin(), more.end());
  return words;
}

// A scanner that is plugged in at the first USB port.
struct ScannerProgram : Program {
  explicit ScannerProgram(const Words& more) : Program(scannerWords(more), kEnglish) {
    errorLine();
  }

  void unplug(int number = SIGTERM) {
    signal(number);
    EXPECT_EQ(end().code, 0);
    EXPECT_FALSE(std::filesystem::is_symlink(kUsb1Path));
  }
};

// A device that delivers base64 of messages that end with the character.
struct Device : SerialDriver {
  explicit Device(std::int32_t suffix = 13) {
    component.setParameter(u"Suffix", suffix);
    component.setParameter(u"OutputDataType", rig::kDataBase64);
    open(kUsb1);
  }
  void expect(const std::vector<std::string>& messages) {
    for (const std::string& message : messages) EXPECT_EQ(event().data, rig::base64(message));
  }
};

struct TemporaryFile {
  explicit TemporaryFile(const std::string& content) {
    std::ofstream(path, std::ios::binary) << content;
  }
  ~TemporaryFile() { std::filesystem::remove(path); }
  const std::string path = "/dev/shm/scans";
};

TEST(ScannerTool, ScansItsTextsWithACarriageReturnAfterEach) {
  ScannerProgram scanner({"4600051000057", "Привет"});
  Device device;
  device.expect({"4600051000057", "Привет"});
  scanner.unplug();
}

TEST(ScannerTool, StaysPluggedInAfterItsLastScanUntilItIsInterrupted) {
  ScannerProgram scanner({"1"});
  Device device;
  device.expect({"1"});
  EXPECT_TRUE(std::filesystem::exists(kUsb1Path));
  scanner.unplug(SIGINT);
}

TEST(ScannerTool, AProcessThatOnlyInspectsThePortIsNotAReader) {
  ScannerProgram scanner({"1"});
  rig::outputOf({"stty", "-F", kUsb1Path, "-a"});
  Device device;
  device.expect({"1"});
  scanner.unplug();
}

TEST(ScannerTool, CanBeUnpluggedWhileItWaitsForAReader) {
  ScannerProgram scanner({"1"});
  scanner.unplug(SIGHUP);
}

TEST(ScannerTool, TheLineSettings) {
  const auto settingsOf = [](const std::string& line) {
    ScannerProgram scanner({"--line", line, "1"});
    std::string settings = rig::outputOf({"stty", "-F", kUsb1Path, "-a"});
    scanner.unplug();
    return settings;
  };
  const std::string framed = settingsOf("framed");
  for (const char* part : {" icanon", "-icrnl", "-echo ", "-isig", "-ixon", "-iexten", "eol = ^M",
                           "eof = <undef>", "intr = <undef>", "erase = <undef>"}) {
    EXPECT_THAT(framed, HasSubstr(part));
  }
  const std::string raw = settingsOf("raw");
  for (const char* part : {"-icanon", "-icrnl", "-echo ", "-opost"}) {
    EXPECT_THAT(raw, HasSubstr(part));
  }
  const std::string cooked = settingsOf("cooked");
  for (const char* part : {" icanon", " icrnl", "\nisig"}) EXPECT_THAT(cooked, HasSubstr(part));
}

TEST(ScannerTool, FramedIsTheUsualLine) {
  ScannerProgram scanner({"1"});
  EXPECT_THAT(rig::outputOf({"stty", "-F", kUsb1Path, "-a"}), HasSubstr("eol = ^M"));
  scanner.unplug();
}

TEST(ScannerTool, ACookedLineIsReadWithALineFeed) {
  ScannerProgram scanner({"--line", "cooked", "123", "456"});
  Device device(10);
  device.expect({"123", "456"});
  scanner.unplug();
}

TEST(ScannerTool, ALineFeedAfterTheCarriageReturn) {
  ScannerProgram scanner({"--line", "raw", "--suffix", "13,10", "123"});
  Device device(10);
  device.expect({"123\r"});
  scanner.unplug();
}

TEST(ScannerTool, NoSuffix) {
  // An empty text, though there is nothing to send, does not end the list of texts.
  ScannerProgram scanner({"--line", "raw", "--suffix", "", "", "123"});
  Device device(-1);
  device.expect({"123"});
  scanner.unplug();
}

TEST(ScannerTool, EscapesStandForBytes) {
  ScannerProgram scanner({"--line", "raw", "--suffix", "3", "--escapes",
                          "\\x02\\x00\\xFF\\xfe\\r\\n\\t\\\\x41", "\\x1D]"});
  Device device(3);
  device.expect({std::string("\x02\0\xFF\xFE\r\n\t\\x41", 11), "\x1D]"});
  scanner.unplug();
}

TEST(ScannerTool, WithoutEscapesABackslashIsABackslash) {
  ScannerProgram scanner({"a\\x41"});
  Device device;
  device.expect({"a\\x41"});
  scanner.unplug();
}

TEST(ScannerTool, LinesOfAFile) {
  const TemporaryFile file("1\nЖ\x1D 2\nthe last, without an end");
  ScannerProgram scanner({"--file", file.path});
  Device device;
  device.expect({"1", "Ж\x1D 2", "the last, without an end"});
  scanner.unplug();
}

TEST(ScannerTool, LinesOfStandardInputAsTheyCome) {
  for (const Words& words : {Words(), Words{"--file", "-"}}) {
    ScannerProgram scanner(words);
    Device device;
    scanner.write("1\n2\n");
    device.expect({"1", "2"});
    scanner.write("3\n");
    device.expect({"3"});
    scanner.endInput();
    device.closeAll();
    scanner.unplug();
  }
}

TEST(ScannerTool, ASlowLineLosesNothingWhenItIsFramed) {
  ScannerProgram scanner({"--byte-delay", "2", "4600051000057", "12345"});
  Device device;
  device.expect({"4600051000057", "12345"});
  scanner.unplug();
}

// The scanner's bytes as read straight from the port.
std::string readPort(std::size_t count) {
  const quorvel::FileDescriptor port(::open(kUsb1Path.c_str(), O_RDONLY | O_NOCTTY | O_CLOEXEC));
  std::string bytes;
  char byte;
  while (bytes.size() < count && ::read(port.get(), &byte, 1) == 1) bytes += byte;
  return bytes;
}

TEST(ScannerTool, DoesNotWaitForAReaderWhenToldNotTo) {
  ScannerProgram scanner({"--no-wait", "--line", "raw", "123", "45"});
  EXPECT_EQ(readPort(7), "123\r45\r");
  scanner.unplug();
}

TEST(ScannerTool, SeveralScansInOneWrite) {
  // The rate counts writes. At less than one a minute, only the first write comes.
  ScannerProgram scanner(
      {"--rate", "0.01", "--burst", "3", "--line", "raw", "--suffix", "10", "1", "2", "3", "4"});
  Device device(10);
  device.expect({"1", "2", "3"});
  scanner.unplug();
}

TEST(ScannerTool, LeavesAnExistingFileAtItsPortAlone) {
  const TemporaryFile file("precious");
  std::filesystem::create_symlink(file.path, kUsb1Path);
  const Ending ending = rig::run(scannerWords({"1"}), kEnglish);
  EXPECT_EQ(ending.code, 1);
  EXPECT_EQ(ending.errors, "quorvel-scanner: " + kUsb1Path + ": File exists\n");
  EXPECT_EQ(std::filesystem::read_symlink(kUsb1Path), file.path);
  std::filesystem::remove(kUsb1Path);
}

const Refusal kScannerRefusals[] = {
    {{}, 2, "a command is missing (see --help)", "нет команды (см. --help)"},
    {{"parallel"},
     2,
     "unknown command parallel (see --help)",
     "неизвестная команда parallel (см. --help)"},
    {{"serial"},
     2,
     "say where the port is to stand: --link PATH",
     "укажите, где поставить порт: --link ПУТЬ"},
    {{"serial", "--link"},
     2,
     "a value is missing after --link (see --help)",
     "нет значения после --link (см. --help)"},
    {{"serial", "--colour"},
     2,
     "unknown option --colour (see --help)",
     "неизвестный ключ --colour (см. --help)"},
    {{"serial", "--link", kUsb1Path, "--line", "parallel"},
     2,
     "--line takes framed, raw or cooked, not parallel",
     "--line принимает framed, raw или cooked, а не parallel"},
    {{"serial", "--link", kUsb1Path, "--suffix", "13,x"},
     2,
     "--suffix: a number is expected from 0 to 255",
     "--suffix: ожидается число от 0 до 255"},
    {{"serial", "--link", kUsb1Path, "--suffix", "256"},
     2,
     "--suffix: a number is expected from 0 to 255",
     "--suffix: ожидается число от 0 до 255"},
    {{"serial", "--link", kUsb1Path, "--burst", "0"},
     2,
     "--burst: a number is expected from 1 to 10000",
     "--burst: ожидается число от 1 до 10000"},
    {{"serial", "--link", kUsb1Path, "--burst", "1.5"},
     2,
     "--burst: a number is expected from 1 to 10000",
     "--burst: ожидается число от 1 до 10000"},
    {{"serial", "--link", kUsb1Path, "--rate", "0"},
     2,
     "--rate: a number is expected from 0.01 to 1000000",
     "--rate: ожидается число от 0.01 до 1000000"},
    {{"serial", "--link", kUsb1Path, "--byte-delay", "-1"},
     2,
     "--byte-delay: a number is expected from 0 to 10000",
     "--byte-delay: ожидается число от 0 до 10000"},
    {{"serial", "--link", kUsb1Path, "--file", "-", "1"},
     2,
     "either texts or --file, not both",
     "либо тексты, либо --file, но не оба"},
    {{"serial", "--link", kUsb1Path, "--file", "/dev/nothing"},
     1,
     "/dev/nothing: No such file or directory",
     "/dev/nothing: нет такого файла или каталога"},
    {{"serial", "--link", "/dev/nowhere/ttyUSB0", "1"},
     1,
     "/dev/nowhere/ttyUSB0: No such file or directory",
     "/dev/nowhere/ttyUSB0: нет такого файла или каталога"},
    {{"serial", "--link", kUsb1Path, "--no-wait", "--escapes", "a\\q"},
     2,
     "not an escape: a\\q",
     "неверная последовательность: a\\q"},
};

TEST(ScannerTool, SaysInOneLineWhatIsWrong) {
  for (const Refusal& refusal : kScannerRefusals) {
    rig::expectRefusal(rig::scannerPath(), refusal);
    EXPECT_FALSE(std::filesystem::is_symlink(kUsb1Path)) << refusal.english;
  }
}

// Only reading shows that a file which opens cannot be read, and by then the scanner is plugged in.
TEST(ScannerTool, UnplugsWhenItsFileCannotBeRead) {
  const Words words = {rig::scannerPath(), "serial", "--link", kUsb1Path,
                       "--no-wait",        "--file", "/dev"};
  const Ending english = rig::run(words, kEnglish);
  EXPECT_EQ(english.code, 1);
  EXPECT_EQ(english.output, "");
  EXPECT_THAT(english.errors,
              EndsWith("\nquorvel-scanner: cannot read the scans: Is a directory\n"));
  const Ending russian = rig::run(words, kRussian);
  EXPECT_EQ(russian.code, 1);
  EXPECT_EQ(russian.output, "");
  EXPECT_THAT(russian.errors,
              EndsWith("\nquorvel-scanner: не удалось прочитать сканы: это каталог\n"));
  EXPECT_FALSE(std::filesystem::is_symlink(kUsb1Path));
}

TEST(ScannerTool, HelpMayStandAnywhereOnTheCommandLine) {
  const auto helpOf = [](Words words, const rig::Variables& locale) {
    words.insert(words.begin(), rig::scannerPath());
    const Ending ending = rig::run(words, locale);
    EXPECT_EQ(ending.code, 0);
    return ending.output;
  };
  for (const Words& words : {Words{"--help"}, Words{"-h"}, Words{"help"}}) {
    EXPECT_THAT(helpOf(words, kEnglish), HasSubstr("usage: quorvel-scanner KIND"));
    EXPECT_THAT(helpOf(words, kRussian), HasSubstr("запуск: quorvel-scanner ВИД"));
  }
  for (const Words& words :
       {Words{"serial", "--help"}, Words{"--help", "serial"}, Words{"help", "serial"}}) {
    EXPECT_THAT(helpOf(words, kEnglish), StartsWith("usage: quorvel-scanner serial"));
    EXPECT_THAT(helpOf(words, kRussian), StartsWith("запуск: quorvel-scanner serial"));
  }
  EXPECT_THAT(helpOf({"help", "keyboard"}, kEnglish),
              StartsWith("usage: quorvel-scanner keyboard"));
  EXPECT_THAT(helpOf({"--version"}, kEnglish), StartsWith("quorvel-scanner "));
}

TEST(ScannerTool, ATextMayLookLikeAnOption) {
  ScannerProgram scanner({"--", "--help"});
  Device device;
  device.expect({"--help"});
  scanner.unplug();
}

TEST(ScannerTool, SaysWhereItIsPluggedIn) {
  for (const auto& [locale, text] : {std::pair(kEnglish, "plugged in at " + kUsb1Path),
                                     std::pair(kRussian, "подключён к " + kUsb1Path)}) {
    Program scanner(scannerWords({"1"}), locale);
    EXPECT_THAT(scanner.errorLine(), StartsWith(text));
    scanner.signal(SIGTERM);
    EXPECT_EQ(scanner.end().code, 0);
  }
}

TEST(SerialLine, ALineThatCannotBeSetUpLeavesNoDescriptorBehind) {
  // A file that opens but is not a multiplexer: the step after opening fails.
  const std::filesystem::path multiplexer = "/dev/ptmx";
  const std::filesystem::path real = std::filesystem::read_symlink(multiplexer);
  std::filesystem::remove(multiplexer);
  std::filesystem::create_symlink("null", multiplexer);
  const std::size_t before = rig::descriptorCount();
  EXPECT_THROW(terminal::SerialLine{terminal::LineSetting::kRaw}, std::system_error);
  EXPECT_EQ(rig::descriptorCount(), before);
  std::filesystem::remove(multiplexer);
  std::filesystem::create_symlink(real, multiplexer);
}

// poll reports the hangup at once, so the sender must not spin on it.
TEST(SerialLine, SendingSleepsWhileAFullLineIsNotOpen) {
  terminal::SerialLine line(terminal::LineSetting::kRaw);
  // The line hangs up when its last reader leaves.
  ::close(::open(line.port().c_str(), O_RDONLY | O_NOCTTY));
  const int cancel = eventfd(0, EFD_CLOEXEC);
  bool sent = true;
  std::optional<std::thread> sending;
  const pid_t sender = rig::threadAddedBy(
      [&] { sending.emplace([&] { sent = line.send(std::string(1000000, 'x'), cancel); }); });
  const long long before = rig::sleepCount(sender);
  rig::await("the sender to sleep", [&] { return rig::sleepCount(sender) > before + 10; });
  eventfd_write(cancel, 1);
  sending->join();
  EXPECT_FALSE(sent);
  close(cancel);
}

}  // namespace
