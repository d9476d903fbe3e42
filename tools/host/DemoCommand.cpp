#include <chrono>
#include <iostream>
#include <stdexcept>
#include <string>
#include <string_view>

#include "tools/common/HostText.h"
#include "tools/common/SerialLine.h"
#include "tools/host/Commands.h"
#include "tools/host/EventPrinter.h"
#include "tools/host/PortFile.h"
#include "tools/host/PrivateDev.h"

namespace terminal {
namespace {

constexpr Text kNotAllowed = {
    "this machine does not let a user have a /dev of their own: run the demo as root",
    "эта машина не даёт пользователю собственного /dev: запустите demo от root"};
constexpr Text kNotOpened = {"the component did not open the scanner",
                             "компонента не открыла сканер"};
constexpr Text kLost = {"a scan did not arrive", "скан не пришёл"};
constexpr Text kTitle = {
    "A barcode scanner on a serial line of 9600 baud, read by the component:",
    "Сканер штрихкода на последовательной линии в 9600 бод, читает компонента:"};
constexpr Text kNext = {
    "With your own scanner: quorvel-host list, then quorvel-host listen --port N",
    "Со своим сканером: quorvel-host list, затем quorvel-host listen --port N"};

constexpr std::int32_t kPort = 129;
constexpr std::chrono::seconds kPatience{20};
// Ten bits a byte at 9600 baud.
constexpr std::chrono::microseconds kByteTime{1040};

constexpr std::string_view kScans[] = {
    "4600051000057",
    "Привет из QR-кода: чай «Лето», 2 шт.",
    "]C10104600051000057\x1D"
    "10LOT-7\x1D"
    "21S1",
    "ABC-1234",
};

void showScans(Component& component, SerialLine& line, EventFormat format) {
  if (!line.waitForReader(-1, kPatience)) throw std::runtime_error(say(kNotOpened));
  for (const std::string_view scan : kScans) {
    line.sendSlowly(std::string(scan) + '\r', kByteTime);
    const auto event = component.events().take(kPatience);
    if (!event) throw std::runtime_error(say(kLost));
    print(*event, format);
  }
}

}  // namespace

const Text kDemoHelp = {
    R"(usage: quorvel-host demo [--json]

Shows scans travelling from a scanner on a serial line through the component, without any
device and without root. The machine's own /dev is left alone.

options:
  --json  one JSON object per scan, as of listen
)",
    R"(запуск: quorvel-host demo [--json]

Показывает, как сканы проходят от сканера на последовательной линии через компоненту; не
нужны ни устройство, ни права root. Настоящий /dev машины не затрагивается.

ключи:
  --json  каждое сканирование — объект JSON, как у listen
)"};

int runDemo(ComponentLibrary& library, const Arguments& arguments) {
  EventFormat format = EventFormat::kText;
  const Arguments rest = readOptions(
      arguments, {{"json", false, [&](const std::string&) { format = EventFormat::kJson; }}});
  refuseArguments(rest);
  if (!enterPrivateDev()) throw std::runtime_error(say(kNotAllowed));
  SerialLine line(LineSetting::kFramed);
  line.link(portFile(kPort));
  Component component(library, u"InputDevice");
  component.object().SetLocale(userLocale());
  component.setParameter(u"Port", kPort);
  const auto id = component.open();
  if (!id) throw std::runtime_error(say(kNotOpened));
  std::cerr << say(kTitle) << std::endl;
  showScans(component, line, format);
  component.close(*id);
  std::cerr << say(kNext) << std::endl;
  return 0;
}

}  // namespace terminal
