#include "tools/host/KeyboardExamination.h"

#include <X11/extensions/XInput2.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string_view>

#include "tools/host/XFocus.h"

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
constexpr FindingText kNoKeyboards = {
    "keyboard-missing",
    {"the X server has no keyboard named \"{name}\", nor any other that can be read",
     "у X-сервера нет ни клавиатуры «{name}», ни другой, которую можно читать"},
    {"plug the scanner in, or set it to serial (USB CDC) mode",
     "подключите сканер или переведите его в режим последовательного порта (USB CDC)"}};
constexpr FindingText kGrabbed = {
    "keyboard-grabbed",
    {"another program has taken the keyboard \"{name}\" for itself",
     "другая программа забрала клавиатуру «{name}» себе"},
    {"close the other application that reads the scanner, or the test window",
     "закройте другое приложение, читающее сканер, или окно теста"}};
constexpr FindingText kWayland = {
    "wayland",
    {"this is a Wayland session: an application hears the scanner only while a window of its own, "
     "or of another X application, has the focus, and cannot tell it from other keyboards, which "
     "are all the one keyboard \"{name}\"",
     "это сеанс Wayland: приложение слышит сканер, только пока фокус в его окне или в окне другого "
     "приложения X, и не отличает его от других клавиатур: все они — одна клавиатура «{name}»"},
    {"log in to an X session (Xorg), or set the scanner to serial (USB CDC) mode",
     "войдите в сеанс X (Xorg) или переведите сканер в режим последовательного порта (USB CDC)"}};
constexpr FindingText kFocusElsewhere = {
    "focus-elsewhere",
    {"the focus is in a window of {program} (process {process}): every other program ignores keys "
     "while it is there",
     "фокус в окне программы {program} (процесс {process}): пока он там, все остальные программы "
     "клавиши пропускают"},
    {"click into the window of the application that is to get the scan",
     "щёлкните в окне приложения, которое должно получить скан"}};

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

bool environmentIsWayland() {
  const char* const session = std::getenv("XDG_SESSION_TYPE");
  const char* const display = std::getenv("WAYLAND_DISPLAY");
  return (session && std::string_view(session) == "wayland") || (display && *display);
}

}  // namespace

int keyboardNamed(XDisplay& display, const std::string& formName) {
  int found = -1;
  for (const XInputDevice& device : display.devices()) {
    if (device.name == formName) found = device.id;
  }
  return found;
}

bool grabKeyboard(const XDisplay& display, int device) {
  std::array<unsigned char, XIMaskLen(XI_LASTEVENT)> bits = {};
  XISetMask(bits.data(), XI_KeyPress);
  XISetMask(bits.data(), XI_KeyRelease);
  XIEventMask mask = {device, static_cast<int>(bits.size()), bits.data()};
  return XIGrabDevice(display.get(), device, DefaultRootWindow(display.get()), CurrentTime, None,
                      XIGrabModeAsync, XIGrabModeAsync, False, &mask) == XIGrabSuccess;
}

void ungrabKeyboard(const XDisplay& display, int device) {
  XIUngrabDevice(display.get(), device, CurrentTime);
  XSync(display.get(), False);
}

Findings keyboardObstacles(XDisplay& display, const std::string& formName) {
  if (!display) return {makeFinding(kDisplayMissing)};
  const int device = keyboardNamed(display, formName);
  if (device < 0) {
    const std::string names = namesLike(formName, display.devices());
    return {makeFinding(names.empty() ? kNoKeyboards : kKeyboardMissing,
                        {{"name", formName}, {"names", names}})};
  }
  if (!grabKeyboard(display, device)) return {makeFinding(kGrabbed, {{"name", formName}})};
  ungrabKeyboard(display, device);
  return {};
}

Findings waylandWarnings(XDisplay& display) {
  if (!display.isXwayland() && !environmentIsWayland()) return {};
  std::string name = "xwayland-keyboard:…";
  for (const XInputDevice& device : display.devices()) {
    if (device.isKeyboard) name = device.name;
  }
  return {makeFinding(kWayland, {{"name", name}})};
}

Findings focusWarnings(const XDisplay& display) {
  const auto program = programWithFocus(display);
  if (!program) return {};
  return {makeFinding(kFocusElsewhere,
                      {{"program", program->name}, {"process", std::to_string(program->process)}})};
}

}  // namespace terminal
