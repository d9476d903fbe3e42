#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/host/Commands.h"
#include "tools/host/JsonOutput.h"
#include "tools/host/ListText.h"
#include "tools/host/PortFile.h"

namespace terminal {
namespace {

std::vector<ListedPort> listedPorts() {
  std::vector<ListedPort> ports;
  for (const std::int32_t number : serialPorts()) {
    ports.push_back(
        {number, examinePort(portFile(number)), productOf(number), stableLinkOf(number)});
  }
  return ports;
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

Json jsonOf(const ListedPort& port) {
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

void writeAll(const std::vector<ListedPort>& ports, const std::vector<XInputDevice>& devices) {
  for (const ListedPort& port : ports) writeJson(jsonOf(port));
  for (const XInputDevice& device : devices) {
    if (device.isKeyboard) writeJson(jsonOf(device));
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
  refuseArguments(
      readOptions(arguments, {{"json", false, [&](const std::string&) { json = true; }}}));
  const std::vector<ListedPort> ports = listedPorts();
  XDisplay display;
  if (json) {
    writeAll(ports, display.devices());
  } else {
    printPorts(ports);
    printKeyboards(display);
  }
  return 0;
}

}  // namespace terminal
