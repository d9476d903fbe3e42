#include <algorithm>

#include "tools/host/Doctors.h"
#include "tools/host/XDisplay.h"

namespace terminal {
namespace {

constexpr FindingText kDisplayMissing = {
    "display-missing",
    {"there is no X display, through which keyboards are read",
     "нет X-дисплея, через который читаются клавиатуры"},
    {"start the application in the desktop session, or set DISPLAY, as in: DISPLAY=:0",
     "запускайте приложение в сеансе рабочего стола или задайте DISPLAY, например: DISPLAY=:0"}};
constexpr FindingText kKeyboardMissing = {
    "keyboard-missing",
    {"the X server has no keyboard named \"{name}\"; it has: {names}",
     "у X-сервера нет клавиатуры «{name}»; есть: {names}"},
    {"--keyboard with one of these names, or plug the scanner in: quorvel-host list",
     "--keyboard с одним из этих имён, либо подключите сканер: quorvel-host list"}};

// How many characters two names have in common at their beginning, whatever their case.
std::size_t likeness(const std::string& one, const std::string& other) {
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
  const auto differ = std::mismatch(one.begin(), one.end(), other.begin(), other.end(),
                                    [&](char a, char b) { return lower(a) == lower(b); });
  return static_cast<std::size_t>(differ.first - one.begin());
}

// The names of the keyboards, those first that are most like the wanted one.
std::string namesLike(const std::string& wanted, std::vector<XInputDevice> devices) {
  std::erase_if(devices, [](const XInputDevice& device) { return !device.isKeyboard; });
  std::stable_sort(devices.begin(), devices.end(),
                   [&](const XInputDevice& one, const XInputDevice& other) {
                     return likeness(one.name, wanted) > likeness(other.name, wanted);
                   });
  std::string names;
  for (const XInputDevice& device : devices) {
    names += (names.empty() ? "\"" : ", \"") + device.name + '"';
  }
  return names;
}

}  // namespace

Diagnosis examineKeyboard(const std::string& formName, const DriverSettings&, std::chrono::seconds,
                          const EndSignals&) {
  Diagnosis diagnosis;
  XDisplay display;
  if (!display) {
    diagnosis.findings.push_back(makeFinding(kDisplayMissing));
    return diagnosis;
  }
  const std::vector<XInputDevice> devices = display.devices();
  const auto hasName = [&](const XInputDevice& device) { return device.name == formName; };
  if (std::none_of(devices.begin(), devices.end(), hasName)) {
    diagnosis.findings.push_back(makeFinding(
        kKeyboardMissing, {{"name", formName}, {"names", namesLike(formName, devices)}}));
  }
  return diagnosis;
}

}  // namespace terminal
