// quorvel-host as its users run it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <nlohmann/json.hpp>
#include <sstream>
#include <string>

#include "QuorvelVersion.h"
#include "tests/rig/HostTool.h"
#include "tests/rig/Refusals.h"
#include "tests/rig/SerialDriver.h"

namespace {

using rig::Ending;
using rig::hostWords;
using rig::kEnglish;
using rig::kRussian;
using rig::Program;
using rig::Refusal;
using rig::Words;
using terminal::LineSetting;
using terminal::SerialLine;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

// A host that listens at the first USB port, and the scanner there.
struct Listening {
  explicit Listening(const Words& options = {}, const rig::Variables& variables = kEnglish,
                     LineSetting setting = LineSetting::kFramed)
      : line(setting), linked(line), host(listenWords(options), variables) {
    while ((listening = host.errorLine()).find("InputDevice#") == listening.npos &&
           listening.find("CardReaderDevice#") == listening.npos) {
    }
    line.waitForReader(-1, rig::kPatience);
  }

  // Scans, and returns what the host prints.
  std::string scan(const std::string& bytes) {
    line.send(bytes);
    return host.line();
  }
  nlohmann::json scanned(const std::string& bytes) { return nlohmann::json::parse(scan(bytes)); }

  void end(int signal) {
    host.signal(signal);
    const Ending ending = host.end();
    EXPECT_EQ(ending.code, 0);
    EXPECT_EQ(ending.output, "");
    EXPECT_EQ(rig::noticesOf(ending), "");
  }

  static Words listenWords(const Words& options) {
    Words words = hostWords({"listen", "--port", "129"});
    words.insert(words.end(), options.begin(), options.end());
    return words;
  }

  struct Linked {
    explicit Linked(SerialLine& line) { line.link("/dev/ttyUSB0"); }
  };

  SerialLine line;
  Linked linked;
  Program host;
  std::string listening;
};

TEST(HostTool, InfoShowsBothClassesWithoutADisplay) {
  const Ending english = rig::run(hostWords({"info"}), kEnglish);
  EXPECT_EQ(english.code, 0);
  EXPECT_EQ(english.errors, "");
  for (const char* part :
       {"InputDevice\n", "CardReaderDevice\n", "9.0.9.2", "СканерШтрихкода", "2004", "methods",
        "Open(1)", "Подключить", "DoAdditionalAction(1)", "ВыполнитьДополнительноеДействие"}) {
    EXPECT_THAT(english.output, HasSubstr(part));
  }
  const Ending russian = rig::run(hostWords({"info"}), kRussian);
  EXPECT_EQ(russian.code, 0);
  EXPECT_THAT(russian.output, HasSubstr("версия"));
  EXPECT_THAT(russian.output, HasSubstr("Драйвер для подключения устройств ввода"));
}

TEST(HostTool, ListenPrintsALineForEachScan) {
  Listening host;
  EXPECT_THAT(host.listening, StartsWith("listening as InputDevice#1"));
  const std::string start = "[0-9]{2}:[0-9]{2}:[0-9]{2}[.][0-9]{3}  InputDevice#1  Штрихкод  ";
  EXPECT_THAT(host.scan("4600051000057\r"), MatchesRegex(start + "4600051000057"));
  // Control characters are shown as control pictures.
  EXPECT_THAT(host.scan("]d201\x1D"
                        "21Ж\x7F\r"),
              MatchesRegex(start + "]d201␝21Ж␡"));
  host.end(SIGINT);
}

TEST(HostTool, ListenSpeaksRussianInARussianLocale) {
  Listening host({}, kRussian);
  EXPECT_THAT(host.listening, StartsWith("слушаю, устройство InputDevice#1"));
  host.end(SIGTERM);
}

TEST(HostTool, ListenPrintsJson) {
  Listening host({"--json"});
  const nlohmann::json event = host.scanned("\"Ж\\\x1D\x01\r");
  EXPECT_EQ(event.size(), 4U);
  EXPECT_THAT(event["time"].get<std::string>(),
              MatchesRegex("[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}[.][0-9]{3}"
                           "[+-][0-9]{4}"));
  EXPECT_EQ(event["source"], "InputDevice#1");
  EXPECT_EQ(event["event"], "Штрихкод");
  EXPECT_EQ(event["data"], "\"Ж\\\x1D\x01");
  // Invalid UTF-8 is left out of the text and does not break the line.
  EXPECT_EQ(host.scanned("1\xFF"
                         "2\r")["data"],
            "12");
  host.end(SIGHUP);
}

TEST(HostTool, ListenEndsAfterTheGivenNumberOfScans) {
  Listening host({"--count", "3", "--json"});
  for (const char* scan : {"1", "2", "3"}) {
    EXPECT_EQ(host.scanned(scan + std::string("\r"))["data"], scan);
  }
  EXPECT_EQ(host.host.end().code, 0);
}

TEST(HostTool, ListenSetsParametersOfEveryKind) {
  Listening host({"--json", "--class", "CardReaderDevice", "--set", "Suffix=10", "--set",
                  "OutputDataType=2", "--set", "EquipmentType=СчитывательМагнитныхКарт", "--set",
                  "COMEncoding=Windows-1251", "--set", "IgnoreKeyboardState=false", "--set",
                  "Speed=115200", "--set", "LogFileFolder=", "--set", "Prefix=-1"},
                 kEnglish, LineSetting::kRaw);
  EXPECT_EQ(rig::outputOf({"stty", "-F", "/dev/ttyUSB0", "speed"}), "115200\n");
  const nlohmann::json event = host.scanned("a=b\r\n");
  EXPECT_EQ(event["source"], "CardReaderDevice#1");
  EXPECT_EQ(event["event"], "ДанныеКартыBase64");
  EXPECT_EQ(event["data"], "YT1iDQ==");
  host.end(SIGINT);
}

TEST(HostTool, NoScanIsLostWhenManyComeAtOnce) {
  Listening host({"--json", "--count", "1000"});
  std::string scans;
  for (int scan = 0; scan < 1000; ++scan) scans += std::to_string(scan) + "\r";
  host.line.send(scans);
  for (int scan = 0; scan < 1000; ++scan) {
    ASSERT_EQ(nlohmann::json::parse(host.host.line())["data"], std::to_string(scan));
  }
  EXPECT_EQ(host.host.end().code, 0);
}

TEST(HostTool, TheLibraryMayBeNamed) {
  const Ending ending =
      rig::run(hostWords({"--library", rig::englishLibraryPath(), "info"}), kEnglish);
  EXPECT_EQ(ending.code, 0);
  EXPECT_THAT(ending.output, HasSubstr("Ostrak: Input device driver"));
}

const Refusal kRefusals[] = {
    {{}, 2, "a command is missing (see --help)", "нет команды (см. --help)"},
    {{"scan"}, 2, "unknown command scan (see --help)", "неизвестная команда scan (см. --help)"},
    {{"info", "more"}, 2, "info takes no arguments", "info не принимает аргументов"},
    {{"listen"},
     2,
     "say which device: --port N or --keyboard NAME",
     "укажите устройство: --port N или --keyboard ИМЯ"},
    {{"listen", "--port", "1", "--keyboard", "K"},
     2,
     "either --port or --keyboard, not both",
     "либо --port, либо --keyboard, но не оба"},
    {{"listen", "--keyboard", "K", "--port", "1"},
     2,
     "either --port or --keyboard, not both",
     "либо --port, либо --keyboard, но не оба"},
    {{"listen", "--port", "0"},
     2,
     "--port: a number is expected from 1 to 2147483647",
     "--port: ожидается число от 1 до 2147483647"},
    {{"listen", "--port", "x"},
     2,
     "--port: a number is expected from 1 to 2147483647",
     "--port: ожидается число от 1 до 2147483647"},
    {{"listen", "--port", "1", "--count", "0"},
     2,
     "--count: a number is expected from 1 to 2147483647",
     "--count: ожидается число от 1 до 2147483647"},
    {{"listen", "--port", "1", "--set", "Speed"},
     2,
     "--set takes NAME=VALUE, not Speed",
     "--set принимает ИМЯ=ЗНАЧЕНИЕ, а не Speed"},
    {{"listen", "--port", "1", "--set", "=1"},
     2,
     "--set takes NAME=VALUE, not =1",
     "--set принимает ИМЯ=ЗНАЧЕНИЕ, а не =1"},
    {{"listen", "--port", "1", "--set", "speed=9600"},
     2,
     "the component knows no parameter speed",
     "компонента не знает параметра speed"},
    {{"listen", "--port", "1", "--set", "Speed=fast"},
     2,
     "Speed: a number is expected from -2147483648 to 2147483647",
     "Speed: ожидается число от -2147483648 до 2147483647"},
    {{"listen", "--port", "1", "--set", "IgnoreKeyboardState=1"},
     2,
     "IgnoreKeyboardState: true or false is expected",
     "IgnoreKeyboardState: ожидается true или false"},
    {{"listen", "--port", "1", "more"}, 2, "unexpected argument more", "лишний аргумент more"},
    {{"listen", "--port"},
     2,
     "a value is missing after --port (see --help)",
     "нет значения после --port (см. --help)"},
    {{"listen", "--loud"},
     2,
     "unknown option --loud (see --help)",
     "неизвестный ключ --loud (см. --help)"},
    {{"listen", "--port", "1", "--class", "Scale"},
     1,
     "no component class named Scale",
     "в компоненте нет класса Scale"},
    {{"--library", "/dev/null", "info"},
     1,
     "/dev/null: is no shared library",
     "/dev/null: не разделяемая библиотека"},
    {{"--library", "/no/\x1B[2J.so", "info"},
     1,
     "/no/␛[2J.so: No such file or directory",
     "/no/␛[2J.so: нет такого файла или каталога"},
};

TEST(HostTool, SaysInOneLineWhatIsWrong) {
  for (const Refusal& refusal : kRefusals) rig::expectRefusal(rig::hostPath(), refusal);
}

TEST(HostTool, HelpMayStandAnywhereOnTheCommandLine) {
  for (const Words& words : {Words{"--help"}, Words{"-h"}, Words{"help"}}) {
    EXPECT_THAT(rig::run(hostWords(words), kEnglish).output,
                HasSubstr("usage: quorvel-host [--library FILE] COMMAND"));
    EXPECT_THAT(rig::run(hostWords(words), kRussian).output,
                HasSubstr("запуск: quorvel-host [--library ФАЙЛ] КОМАНДА"));
    EXPECT_EQ(rig::run(hostWords(words), kEnglish).code, 0);
  }
}

TEST(HostTool, HelpsWithEachCommand) {
  for (const std::string command : {"info", "form", "listen", "list", "doctor", "demo", "test"}) {
    for (const Words& words : {Words{command, "--help"}, Words{"-h", command}, Words{command, "-h"},
                               Words{"help", command}}) {
      EXPECT_THAT(rig::run(hostWords(words), kEnglish).output,
                  StartsWith("usage: quorvel-host " + command));
      EXPECT_THAT(rig::run(hostWords(words), kRussian).output,
                  StartsWith("запуск: quorvel-host " + command));
    }
  }
  EXPECT_EQ(rig::run(hostWords({"help", "scan"}), kEnglish).errors,
            "quorvel-host: unknown command scan (see --help)\n");
  EXPECT_EQ(rig::run(hostWords({"help", "info", "form"}), kEnglish).code, 2);
}

TEST(HostTool, HelpOfListenNamesTheParametersOfTheForm) {
  const std::string help =
      rig::run(hostWords({"--library", rig::englishLibraryPath(), "help", "listen"}), kEnglish)
          .output;
  EXPECT_THAT(help, HasSubstr("parameters of --set"));
  EXPECT_THAT(help, HasSubstr("  Suffix: Suffix (number, by default 13)"));
  EXPECT_THAT(help, HasSubstr("    * 9600\n"));
  // Without a library the help lacks only the parameters.
  const Ending without =
      rig::run(hostWords({"--library", "/no/\x1B[2J.so", "help", "doctor"}), kEnglish);
  EXPECT_EQ(without.code, 0);
  EXPECT_THAT(without.output, StartsWith("usage: quorvel-host doctor"));
  EXPECT_THAT(without.output, HasSubstr("\n/no/␛[2J.so: No such file or directory\n"));
}

TEST(HostTool, TellsItsVersion) {
  for (const Words& words : {Words{"--version"}, Words{"listen", "--version"}}) {
    const Ending ending = rig::run(hostWords(words), kEnglish);
    EXPECT_EQ(ending.code, 0);
    EXPECT_EQ(ending.output, "quorvel-host " + std::string(quorvel::kVersion) + "\n");
  }
}

TEST(HostTool, BothToolsTogether) {
  Program scanner({rig::scannerPath(), "serial", "--link", "/dev/ttyACM0", "--rate", "1000000",
                   "--escapes", "4600051000057", "Привет", "]d201\\x1D21"},
                  kEnglish);
  scanner.errorLine();
  const Ending host =
      rig::run(hostWords({"listen", "--port", "65", "--count", "3", "--json"}), kEnglish);
  EXPECT_EQ(host.code, 0);
  std::istringstream lines(host.output);
  for (const char* scan : {"4600051000057", "Привет",
                           "]d201\x1D"
                           "21"}) {
    std::string line;
    std::getline(lines, line);
    EXPECT_EQ(nlohmann::json::parse(line)["data"], scan);
  }
  scanner.signal(SIGINT);
  EXPECT_EQ(scanner.end().code, 0);
}

}  // namespace
