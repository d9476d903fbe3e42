#include "tools/host/ListenNotices.h"

#include <iostream>

#include "tools/common/VisibleText.h"
#include "tools/host/DroppedMessages.h"
#include "tools/host/KeyboardExamination.h"
#include "tools/host/PortFile.h"
#include "tools/host/SerialFindings.h"

namespace terminal {
namespace {

constexpr Text kWarning = {"warning: ", "внимание: "};
constexpr Text kSilence = {"nothing has come yet; to find out why: ",
                           "пока ничего не пришло; выяснить почему: "};
constexpr Text kGone = {"the device has gone: ", "устройство отключено: "};
constexpr Text kBack = {"the device is back: ", "устройство снова подключено: "};
constexpr Text kDropped = {"messages dropped, each longer than 1 MiB or without memory for it: ",
                           "отброшено сообщений длиннее 1 МиБ или без памяти для них: "};

// The shell command that runs the doctor on the device.
std::string doctorCommand(const DeviceOptions& device) {
  return "quorvel-host doctor " + (device.port ? "--port " + std::to_string(*device.port)
                                               : "--keyboard '" + *device.keyboard + "'");
}

Findings examineKeyboardNamed(const std::string& formName) {
  XDisplay display;
  for (const Finding& warning : waylandWarnings(display)) tell(say(kWarning) + warning.text);
  return keyboardObstacles(display, formName);
}

}  // namespace

void tell(const std::string& message) { std::cerr << visible(message) << std::endl; }

Findings examine(const DeviceOptions& device) {
  if (!device.port) return examineKeyboardNamed(*device.keyboard);
  const SerialExamination examined = examinePort(portFile(*device.port));
  Findings obstacles = obstaclesOf(*device.port, examined);
  if (!examined.setting) return obstacles;
  const DriverSettings settings = settingsFrom(device);
  Findings warnings = obstacles;
  const Findings ofLine = lineWarnings(*device.port, examined, settings);
  warnings.insert(warnings.end(), ofLine.begin(), ofLine.end());
  if (isUnknownSpeed(settings.speed)) warnings.push_back(speedWarning(settings));
  const Findings ofRawLine = rawLineNotes(*device.port, examined);
  warnings.insert(warnings.end(), ofRawLine.begin(), ofRawLine.end());
  for (const Finding& warning : warnings) tell(say(kWarning) + warning.text);
  return obstacles;
}

void tellFailure(const std::string& componentText, const Findings& reasons) {
  tell("quorvel-host: " + componentText);
  for (const Finding& reason : reasons) std::cerr << asParagraph(reason) << std::endl;
}

PresenceTeller::PresenceTeller(const DeviceOptions& device)
    : name_(device.port ? portFile(*device.port) : *device.keyboard),
      presence_(device.port ? presenceOfPort(*device.port) : presenceOfKeyboard(*device.keyboard)) {
}

void PresenceTeller::look() {
  const std::string identity = presence_->identity();
  if (identity == identity_) return;
  if (!identity_.empty()) tell(say(kGone) + name_);
  if (!identity.empty()) tell(say(kBack) + name_);
  identity_ = identity;
}

void tellDroppedMessages() {
  if (const unsigned count = takeDroppedMessages()) {
    tell(say(kWarning) + (say(kDropped) + std::to_string(count)));
  }
}

void SilenceHint::look() {
  if (!isDue_ || std::chrono::steady_clock::now() < time_) return;
  tell(say(kSilence) + doctorCommand(device_));
  isDue_ = false;
}

}  // namespace terminal
