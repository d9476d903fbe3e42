#include <poll.h>

#include <chrono>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "tools/common/EndSignals.h"
#include "tools/common/HostText.h"
#include "tools/host/Commands.h"
#include "tools/host/DeviceOptions.h"
#include "tools/host/EventPrinter.h"
#include "tools/host/HostWindow.h"
#include "tools/host/ListenNotices.h"

namespace terminal {
namespace {

constexpr Text kListening = {"listening as ", "слушаю, устройство "};
constexpr Text kWindow = {"quorvel-host: click here, then scan",
                          "quorvel-host: щёлкните здесь и сканируйте"};
constexpr Text kUntil = {"; Ctrl-C ends", "; Ctrl-C — закончить"};

struct ListenOptions {
  DeviceOptions device;
  std::u16string className = u"InputDevice";
  std::size_t count = std::numeric_limits<std::size_t>::max();
  EventFormat format = EventFormat::kText;
  bool hasWindow = false;
};

ListenOptions listenOptionsFrom(const Arguments& arguments) {
  ListenOptions listen;
  const auto takeClass = [&](const std::string& value) { listen.className = toHostText(value); };
  const auto takeCount = [&](const std::string& value) {
    constexpr std::int32_t kLargest = std::numeric_limits<std::int32_t>::max();
    listen.count = static_cast<std::size_t>(integerFrom(value, "--count", 1, kLargest));
  };
  const auto takeJson = [&](const std::string&) { listen.format = EventFormat::kJson; };
  std::vector<Option> table = listen.device.table();
  const auto takeWindow = [&](const std::string&) { listen.hasWindow = true; };
  table.insert(table.end(), {{"class", true, takeClass},
                             {"count", true, takeCount},
                             {"json", false, takeJson},
                             {"window", false, takeWindow}});
  const Arguments rest = readOptions(arguments, table);
  refuseArguments(rest);
  listen.device.requireDevice();
  return listen;
}

// Prints events until there have been `count`, a signal asks to end, or the window is closed.
void printUntilEnd(EventQueue& events, const ListenOptions& listen, PresenceTeller& presence,
                   std::optional<HostWindow>& window, const EndSignals& end) {
  constexpr int kBetweenLooks = 250;  // milliseconds
  SilenceHint hint(listen.device);
  for (std::size_t printed = 0; printed < listen.count;) {
    pollfd waits[] = {{events.descriptor(), POLLIN, 0}, {end.descriptor(), POLLIN, 0}};
    if (poll(waits, 2, kBetweenLooks) < 0) continue;
    if (waits[1].revents) return;
    if (const auto event = events.take(std::chrono::milliseconds(0))) {
      print(*event, listen.format);
      ++printed;
      hint.drop();
      if (window) window->show(toUtf8(event->data));
      continue;
    }
    if (window && window->isClosed()) return;
    presence.look();
    tellDroppedMessages();
    hint.look();
  }
}

}  // namespace

const Text kListenHelp = {
    R"(usage: quorvel-host listen (--port N|FILE | --keyboard NAME) [OPTION...]

Opens a device and prints each scan until Ctrl-C.

options:
  --port N|FILE     the serial port: 1-64 ttyS0 onward, 65-128 ttyACM0 onward, 129 and
                    up ttyUSB0 onward; or its device file, or a link that leads to it
  --keyboard NAME   the scanner that types, by its name in the form
  --set NAME=VALUE  set a parameter first; may be repeated
  --class NAME      InputDevice (default) or CardReaderDevice
  --count N         end by itself after N scans
  --json            one JSON object per scan
  --window          open a small window: a scanner that types is heard while it has
                    the focus, as in an application
)",
    R"(запуск: quorvel-host listen (--port N|ФАЙЛ | --keyboard ИМЯ) [КЛЮЧ...]

Открывает устройство и печатает каждое сканирование до Ctrl-C.

ключи:
  --port N|ФАЙЛ     последовательный порт: 1-64 — ttyS0 и далее, 65-128 — ttyACM0 и
                    далее, от 129 — ttyUSB0 и далее; либо его файл устройства или
                    ведущая к нему ссылка
  --keyboard ИМЯ    сканер-клавиатура, имя как в форме настроек
  --set ИМЯ=ЗНАЧ    сначала задать параметр; можно повторять
  --class ИМЯ       InputDevice (по умолчанию) или CardReaderDevice
  --count N         закончить после N сканирований
  --json            каждое сканирование — объект JSON
  --window          открыть небольшое окно: сканер-клавиатура слышен, пока фокус в
                    нём, как в приложении
)"};

int runListen(ComponentLibrary& library, const Arguments& arguments) {
  const ListenOptions listen = listenOptionsFrom(arguments);
  const EndSignals end;
  PresenceTeller presence(listen.device);
  std::optional<HostWindow> window;
  if (listen.hasWindow) window.emplace(say(kWindow));
  Component component(library, listen.className);
  component.object().SetLocale(userLocale());
  listen.device.applyTo(component);
  const Findings obstacles = examine(listen.device);
  // The component opens any file, and would then wait for scans for ever.
  const bool isLine = !contains(obstacles, "not-a-line");
  const auto id = isLine ? component.open() : std::nullopt;
  if (!id) {
    tellFailure(toUtf8(component.lastError()), obstacles);
    return 1;
  }
  presence.begin();
  tell(say(kListening) + toUtf8(*id) + say(kUntil));
  printUntilEnd(component.events(), listen, presence, window, end);
  component.close(*id);
  // Scans that came before the device was closed still count.
  while (const auto event = component.events().take(std::chrono::milliseconds(0))) {
    print(*event, listen.format);
  }
  tellDroppedMessages();
  return 0;
}

}  // namespace terminal
