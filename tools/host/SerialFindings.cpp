#include "tools/host/SerialFindings.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include "tools/host/PortFile.h"

namespace terminal {
namespace {

namespace fs = std::filesystem;

constexpr FindingText kMissing = {
    "port-missing",
    {"there is no {file} on this machine", "на этой машине нет {file}"},
    {"plug the scanner in; quorvel-host list shows the ports that are there",
     "подключите сканер; quorvel-host list показывает имеющиеся порты"}};

constexpr FindingText kDeniedToGroup = {
    "port-denied",
    {"{file} may be read by the group {group} only, and you are not in it",
     "{file} может читать только группа {group}, а вы в неё не входите"},
    {"sudo adduser $USER {group}, then log in again",
     "sudo adduser $USER {group}, затем войдите в систему заново"}};
constexpr FindingText kDeniedUntilLogin = {
    "port-denied",
    {"{file} may be read by the group {group}; you are in it, but have not logged in since",
     "{file} может читать группа {group}; вы в неё входите, но с тех пор не входили в систему"},
    {"log out and in again", "выйдите из системы и войдите снова"}};
constexpr FindingText kDenied = {
    "port-denied",
    {"you may not read {file}, and no group of users may",
     "читать {file} вам нельзя, и ни одной "
     "группе пользователей тоже"},
    {"install the udev rule 61-quorvel.rules, or: sudo chmod g+r {file}",
     "установите правило udev 61-quorvel.rules или выполните: sudo chmod g+r {file}"}};

constexpr FindingText kNotALine = {
    "not-a-line",
    {"{file} is not a serial line, or has no device behind it",
     "{file} не является последовательной линией, или за ней нет устройства"},
    {"choose another port: quorvel-host list", "выберите другой порт: quorvel-host list"}};

constexpr FindingText kBusy = {
    "line-busy",
    {"{file} is also read by {program} (process {process}), which takes part of the scans",
     "{file} читает ещё и {program} (процесс {process}), которому достаётся часть сканов"},
    {"end it: kill {process}", "завершите его: kill {process}"}};
constexpr FindingText kBusyByUnknown = {
    "line-busy",
    {"{file} is taken by a process of another user, which lets nobody else open it",
     "{file} занят процессом другого пользователя, который никого к нему не пускает"},
    {"find it: sudo fuser -v {file}", "найдите его: sudo fuser -v {file}"}};
// Programs that take serial ports unasked.
constexpr std::pair<std::string_view, FindingText> kKnownHolders[] = {
    {"ModemManager",
     {"line-busy",
      {"ModemManager (process {process}) probes {file} for a modem and takes part of the scans",
       "ModemManager (процесс {process}) ищет на {file} модем и забирает часть сканов"},
      {"sudo systemctl mask --now ModemManager", "sudo systemctl mask --now ModemManager"}}},
    {"brltty",
     {"line-busy",
      {"the braille daemon brltty (process {process}) has taken {file} for a braille display",
       "служба Брайля brltty (процесс {process}) приняла {file} за дисплей Брайля"},
      {"sudo apt-get remove brltty", "sudo apt-get remove brltty"}}},
    {"agetty",
     {"line-busy",
      {"a login terminal (agetty, process {process}) runs on {file} and takes part of the scans",
       "на {file} работает терминал входа (agetty, процесс {process}), он забирает часть сканов"},
      {"sudo systemctl disable --now serial-getty@{name}.service",
       "sudo systemctl disable --now serial-getty@{name}.service"}}},
    {"login",
     {"line-busy",
      {"somebody is logging in on {file} (login, process {process})",
       "на {file} выполняется вход в систему (login, процесс {process})"},
      {"sudo systemctl disable --now serial-getty@{name}.service",
       "sudo systemctl disable --now serial-getty@{name}.service"}}},
};

constexpr FindingText kCooked = {
    "line-cooked",
    {"the line {file} is cooked, as a terminal's: carriage return becomes line feed and control "
     "characters are acted on",
     "линия {file} в режиме терминала (cooked): возврат каретки становится переводом строки, "
     "управляющие символы выполняются"},
    {"{command}; or --set Suffix=10", "{command}; либо --set Suffix=10"}};

constexpr FindingText kRaw = {"line-raw",
                              {"the line is raw: a scan that comes in pieces is lost",
                               "линия без сборки (raw): скан, пришедший по частям, теряется"},
                              {"{command}", "{command}"}};

constexpr FindingText kSpeedUnknown = {
    "speed-unknown",
    {"the driver knows no speed {speed} and uses 9600",
     "драйвер не знает скорости {speed} и "
     "использует 9600"},
    {"--set Speed with one of the values that quorvel-host form shows",
     "--set Speed с одним из значений, которые показывает quorvel-host form"}};

// The speeds of the settings form.
constexpr std::int32_t kDriverSpeeds[] = {110,  300,   600,   1200,  2400,  4800,
                                          9600, 19200, 38400, 57600, 115200};

// The installed script that frames a line: below the prefix from which this program runs, in the
// folder that all word sizes share. Empty where it is not installed.
std::string framingScript() {
  std::error_code error;
  const fs::path program = fs::read_symlink("/proc/self/exe", error);
  for (const fs::path& library : {program.parent_path() / "../..", fs::path("/usr/lib")}) {
    const fs::path script = (library / "quorvel/quorvel-frame-line").lexically_normal();
    if (access(script.c_str(), X_OK) == 0) return script.string();
  }
  return {};
}

Finding denied(const std::string& file, const SerialExamination& examined) {
  const FindingText* text = &kDenied;
  if (!examined.readersGroup.empty()) {
    text = examined.hasToLogIn ? &kDeniedUntilLogin : &kDeniedToGroup;
  }
  return makeFinding(*text, {{"file", file}, {"group", examined.readersGroup}});
}

Finding busy(const std::string& file, const Holder& holder) {
  const auto known =
      std::find_if(std::begin(kKnownHolders), std::end(kKnownHolders),
                   [&](const auto& program) { return program.first == holder.program; });
  return makeFinding(known == std::end(kKnownHolders) ? kBusy : known->second,
                     {{"file", file},
                      {"name", file.substr(file.rfind('/') + 1)},
                      {"program", holder.program},
                      {"process", std::to_string(holder.process)}});
}

}  // namespace

std::string framingCommand(std::int32_t port) {
  if (const std::string script = framingScript(); !script.empty()) {
    return "sudo " + script + ' ' + portFile(port);
  }
  return "sudo stty -F " + portFile(port) +
         " icanon -icrnl -inlcr -igncr -istrip -ixon -ixoff -brkint -inpck -parmrk -echo -echonl"
         " -isig -iexten intr undef quit undef erase undef kill undef eof undef eol2 undef"
         " start undef stop undef susp undef rprnt undef werase undef lnext undef eol '^M'";
}

Findings obstaclesOf(std::int32_t port, const SerialExamination& examined) {
  const std::string file = portFile(port);
  Findings found;
  switch (examined.access) {
    case PortAccess::kMissing:
      found.push_back(makeFinding(kMissing, {{"file", file}}));
      break;
    case PortAccess::kDenied:
      found.push_back(denied(file, examined));
      break;
    case PortAccess::kNotALine:
      found.push_back(makeFinding(kNotALine, {{"file", file}}));
      break;
    case PortAccess::kOk:
      for (const Holder& holder : examined.holders) found.push_back(busy(file, holder));
      if (examined.isExclusive && found.empty()) {
        found.push_back(makeFinding(kBusyByUnknown, {{"file", file}}));
      }
      break;
  }
  return found;
}

bool isUnknownSpeed(std::int32_t bitsPerSecond) {
  return std::find(std::begin(kDriverSpeeds), std::end(kDriverSpeeds), bitsPerSecond) ==
         std::end(kDriverSpeeds);
}

Finding speedWarning(const DriverSettings& settings) {
  return makeFinding(kSpeedUnknown, {{"speed", std::to_string(settings.speed)}});
}

Findings lineWarnings(std::int32_t port, const SerialExamination& examined,
                      const DriverSettings& settings) {
  if (!examined.setting || kindOf(*examined.setting) != LineKind::kCooked) return {};
  if (settings.suffix == '\n') return {};
  return {makeFinding(kCooked, {{"file", portFile(port)}, {"command", framingCommand(port)}})};
}

Findings rawLineNotes(std::int32_t port, const SerialExamination& examined) {
  if (!examined.setting || kindOf(*examined.setting) != LineKind::kRaw) return {};
  return {makeFinding(kRaw, {{"command", framingCommand(port)}})};
}

}  // namespace terminal
