#include "tools/host/ListText.h"

#include <algorithm>
#include <iostream>
#include <optional>

#include "tools/common/VisibleText.h"
#include "tools/host/DriverSettings.h"
#include "tools/host/KeyboardExamination.h"
#include "tools/host/PortFile.h"
#include "tools/host/SerialFindings.h"

namespace terminal {
namespace {

constexpr Text kPortNumber = {"port ", "порт "};
constexpr Text kInWindow = {" (test window: ", " (в окне теста: "};
constexpr Text kSerialNumber = {"serial number ", "серийный номер "};
constexpr Text kBaud = {" baud", " бод"};
constexpr Text kUsedBy = {"open in ", "открыт в "};
constexpr Text kKeyboard = {"keyboard ", "клавиатура "};
constexpr Text kSwitchedOff = {"switched off", "отключена"};
constexpr Text kNamesake = {"a later keyboard has the same name, and the component reads that one",
                            "ниже есть клавиатура с тем же именем, и компонента читает её"};
constexpr Text kNoPorts = {"no serial ports", "последовательных портов нет"};
constexpr Text kNoKeyboardList = {"no keyboards: there is no X display",
                                  "клавиатур нет: нет X-дисплея"};
constexpr Text kNoKeyboards = {"no keyboards", "клавиатур нет"};

void printLine(const std::string& text) {
  if (!text.empty()) std::cout << "  " << text << '\n';
}

void printNotes(const Findings& notes) {
  for (const Finding& note : notes) {
    printLine("! " + note.text);
    printLine("  -> " + note.remedy);
  }
}

std::string productLine(const Product& product) {
  std::string line;
  for (const std::string& part : {product.maker, product.name}) {
    if (!part.empty()) line += (line.empty() ? "" : " ") + visible(part);
  }
  if (product.serialNumber.empty()) return line;
  return line + (line.empty() ? "" : ", ") + say(kSerialNumber) + visible(product.serialNumber);
}

std::string settingLine(const SerialExamination& examined) {
  if (!examined.setting) return {};
  std::string line = nameOf(kindOf(*examined.setting));
  if (const auto speed = speedOf(*examined.setting)) {
    line += ", " + std::to_string(*speed) + say(kBaud);
  }
  return line;
}

std::string holdersLine(const SerialExamination& examined) {
  std::string line;
  for (const Holder& holder : examined.holders) {
    line += (line.empty() ? say(kUsedBy) : ", ") + visible(holder.program) + " (" +
            std::to_string(holder.process) + ")";
  }
  return line;
}

void print(const ListedPort& port) {
  const std::int32_t number = port.number;
  std::cout << portFile(number) << ": " << say(kPortNumber) << number << ", " << formName(number)
            << say(kInWindow) << windowName(number) << ")\n";
  printLine(productLine(port.product));
  printLine(visible(port.link));
  printLine(settingLine(port.examined));
  printLine(holdersLine(port.examined));
  printNotes(obstaclesOf(number, port.examined));
  printNotes(lineWarnings(number, port.examined, DriverSettings()));
  printNotes(rawLineNotes(number, port.examined));
}

void print(const XInputDevice& keyboard, bool hasLaterNamesake) {
  std::cout << say(kKeyboard) << '"' << visible(keyboard.name) << "\" (" << keyboard.id << ")\n";
  if (!keyboard.isEnabled) printLine(std::string("! ") + say(kSwitchedOff));
  if (hasLaterNamesake) printLine(std::string("! ") + say(kNamesake));
}

}  // namespace

void printPorts(const std::vector<ListedPort>& ports) {
  if (ports.empty()) std::cout << say(kNoPorts) << '\n';
  for (const ListedPort& port : ports) print(port);
}

void printKeyboards(XDisplay& display) {
  std::vector<XInputDevice> keyboards = display.devices();
  std::erase_if(keyboards, [](const XInputDevice& device) { return !device.isKeyboard; });
  if (keyboards.empty()) std::cout << say(display ? kNoKeyboards : kNoKeyboardList) << '\n';
  for (auto keyboard = keyboards.begin(); keyboard != keyboards.end(); ++keyboard) {
    print(*keyboard, std::any_of(keyboard + 1, keyboards.end(), [&](const XInputDevice& later) {
      return later.name == keyboard->name;
    }));
  }
  printNotes(waylandWarnings(display));
  printNotes(focusWarnings(display));
}

}  // namespace terminal
