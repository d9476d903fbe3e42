#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "tools/common/Output.h"
#include "tools/common/VisibleText.h"
#include "tools/host/Commands.h"
#include "tools/host/PortFile.h"
#include "tools/host/SerialFindings.h"
#include "tools/host/SerialPorts.h"
#include "tools/host/XDisplay.h"

namespace terminal {
namespace {

using Json = nlohmann::ordered_json;

constexpr Text kUnexpected = {"unexpected argument ", "лишний аргумент "};
constexpr Text kPort = {"port ", "порт "};
constexpr Text kInWindow = {" (test window: ", " (в окне теста: "};
constexpr Text kSerialNumber = {"serial number ", "серийный номер "};
constexpr Text kBaud = {" baud", " бод"};
constexpr Text kUsedBy = {"open in ", "открыт в "};
constexpr Text kKeyboard = {"keyboard ", "клавиатура "};
constexpr Text kSwitchedOff = {"switched off", "отключена"};
constexpr Text kNoPorts = {"no serial ports", "последовательных портов нет"};
constexpr Text kNoDisplay = {"no keyboards: there is no X display", "клавиатур нет: нет X-дисплея"};

struct Port {
  std::int32_t number;
  SerialExamination examined;
  Product product;
  std::string link;
};

Port portNumbered(std::int32_t number) {
  return {number, examinePort(portFile(number)), productOf(number), stableLinkOf(number)};
}

// An empty text is an unknown one.
Json orNull(const std::string& text) { return text.empty() ? Json() : Json(text); }

const char* nameOf(PortAccess access) {
  switch (access) {
    case PortAccess::kOk:
      return "ok";
    case PortAccess::kDenied:
      return "denied";
    case PortAccess::kMissing:  // a link that leads nowhere
    case PortAccess::kNotALine:
      break;
  }
  return "not-a-line";
}

Json jsonOf(const Port& port) {
  const auto& setting = port.examined.setting;
  const std::optional<int> speed = setting ? speedOf(*setting) : std::nullopt;
  Json users = Json::array();
  for (const Holder& holder : port.examined.holders) users.push_back(holder.process);
  return {{"kind", "serial"},
          {"port", port.number},
          {"file", portFile(port.number)},
          {"name", formName(port.number)},
          {"product", orNull(port.product.name)},
          {"access", nameOf(port.examined.access)},
          {"line", setting ? Json(nameOf(kindOf(*setting))) : Json()},
          {"speed", speed ? Json(*speed) : Json()},
          {"used_by", users},
          {"by_id", orNull(port.link)}};
}

Json jsonOf(const XInputDevice& keyboard) {
  return {{"kind", "keyboard"},
          {"name", keyboard.name},
          {"id", keyboard.id},
          {"access", keyboard.isEnabled ? "ok" : "denied"}};
}

void printLine(const std::string& text) {
  if (!text.empty()) std::cout << "  " << text << '\n';
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

void printPort(const Port& port) {
  std::cout << portFile(port.number) << ": " << say(kPort) << port.number << ", "
            << formName(port.number) << say(kInWindow) << windowName(port.number) << ")\n";
  printLine(productLine(port.product));
  printLine(visible(port.link));
  printLine(settingLine(port.examined));
  printLine(holdersLine(port.examined));
  Findings notes = obstaclesOf(port.number, port.examined);
  const Findings warnings = lineWarnings(port.number, port.examined, DriverSettings());
  notes.insert(notes.end(), warnings.begin(), warnings.end());
  for (const Finding& note : notes) {
    printLine("! " + note.text);
    printLine("  -> " + note.remedy);
  }
}

void printKeyboard(const XInputDevice& keyboard) {
  std::cout << say(kKeyboard) << '"' << visible(keyboard.name) << "\" (" << keyboard.id << ")\n";
  if (!keyboard.isEnabled) printLine(std::string("! ") + say(kSwitchedOff));
}

void listPorts(bool json) {
  const std::vector<std::int32_t> numbers = serialPorts();
  if (numbers.empty() && !json) std::cout << say(kNoPorts) << '\n';
  for (const std::int32_t number : numbers) {
    const Port port = portNumbered(number);
    if (json) {
      writeLine(withEscapes(jsonOf(port).dump(-1, ' ', false, Json::error_handler_t::replace)));
    } else {
      printPort(port);
    }
  }
}

void listKeyboards(bool json) {
  XDisplay display;
  if (!display && !json) std::cout << say(kNoDisplay) << '\n';
  for (const XInputDevice& device : display.devices()) {
    if (!device.isKeyboard) continue;
    if (json) {
      writeLine(withEscapes(jsonOf(device).dump()));
    } else {
      printKeyboard(device);
    }
  }
}

}  // namespace

const Text kListHelp = {
    R"(usage: quorvel-host list [--json]

Shows every serial port and keyboard of this machine, and what stands in the way of reading
it. Needs no component.

options:
  --json  one JSON object per device
)",
    R"(запуск: quorvel-host list [--json]

Показывает все последовательные порты и клавиатуры этой машины и то, что мешает их читать.
Компонента для этого не нужна.

ключи:
  --json  каждое устройство — объект JSON
)"};

int runList(const Arguments& arguments) {
  bool json = false;
  const Arguments rest =
      readOptions(arguments, {{"json", false, [&](const std::string&) { json = true; }}});
  if (!rest.empty()) throw UsageError(say(kUnexpected) + rest.front());
  listPorts(json);
  listKeyboards(json);
  return 0;
}

}  // namespace terminal
