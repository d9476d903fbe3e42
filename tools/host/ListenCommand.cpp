#include <poll.h>

#include <array>
#include <ctime>
#include <iomanip>
#include <iostream>
#include <limits>
#include <nlohmann/json.hpp>
#include <sstream>

#include "tools/common/EndSignals.h"
#include "tools/common/HostText.h"
#include "tools/host/Commands.h"

namespace terminal {
namespace {

constexpr Text kNoDevice = {"say which device: --port N or --keyboard NAME",
                            "укажите устройство: --port N или --keyboard ИМЯ"};
constexpr Text kTwoDevices = {"either --port or --keyboard, not both",
                              "либо --port, либо --keyboard, но не оба"};
constexpr Text kUnexpected = {"unexpected argument ", "лишний аргумент "};
constexpr Text kNotAssigned = {"--set takes NAME=VALUE, not ",
                               "--set принимает ИМЯ=ЗНАЧЕНИЕ, а не "};
constexpr Text kNotAFlag = {": true or false is expected", ": ожидается true или false"};
constexpr Text kUnknownParameter = {"the component knows no parameter ",
                                    "компонента не знает параметра "};
constexpr Text kListening = {"listening as ", "слушаю, устройство "};
constexpr Text kUntil = {"; Ctrl-C ends", "; Ctrl-C — закончить"};

constexpr std::int32_t kLargest = std::numeric_limits<std::int32_t>::max();

enum class ParameterType { kNumber, kText, kFlag };

// The parameters that are no numbers. A number sent where a text is expected would be refused.
constexpr std::pair<std::u16string_view, ParameterType> kOtherTypes[] = {
    {u"KeyboardDevice", ParameterType::kText},      {u"COMEncoding", ParameterType::kText},
    {u"LogFileFolder", ParameterType::kText},       {u"EquipmentType", ParameterType::kText},
    {u"IgnoreKeyboardState", ParameterType::kFlag},
};

ParameterType typeOf(std::u16string_view name) {
  for (const auto& [known, type] : kOtherTypes) {
    if (known == name) return type;
  }
  return ParameterType::kNumber;
}

struct Assignment {
  std::u16string name;
  std::string value;
};

struct ListenOptions {
  std::vector<Assignment> assignments;
  std::u16string className = u"InputDevice";
  std::size_t count = std::numeric_limits<std::size_t>::max();
  bool json = false;
};

Assignment assignmentFrom(const std::string& text) {
  const std::size_t sign = text.find('=');
  if (sign == text.npos || sign == 0) throw UsageError(say(kNotAssigned) + text);
  return {toHostText(text.substr(0, sign)), text.substr(sign + 1)};
}

ListenOptions listenOptionsFrom(const Arguments& arguments) {
  ListenOptions listen;
  std::vector<Assignment> device;
  std::vector<Assignment> others;
  const auto takePort = [&](const std::string& value) {
    integerFrom(value, "--port", 1, kLargest);
    device.push_back({u"Port", value});
  };
  const auto takeKeyboard = [&](const std::string& value) {
    device.insert(device.end(), {{u"Port", "0"}, {u"KeyboardDevice", value}});
  };
  const auto takeSet = [&](const std::string& value) { others.push_back(assignmentFrom(value)); };
  const auto takeClass = [&](const std::string& value) { listen.className = toHostText(value); };
  const auto takeCount = [&](const std::string& value) {
    listen.count = static_cast<std::size_t>(integerFrom(value, "--count", 1, kLargest));
  };
  const auto takeJson = [&](const std::string&) { listen.json = true; };
  const Arguments rest = readOptions(arguments, {{"port", true, takePort},
                                                 {"keyboard", true, takeKeyboard},
                                                 {"set", true, takeSet},
                                                 {"class", true, takeClass},
                                                 {"count", true, takeCount},
                                                 {"json", false, takeJson}});
  if (!rest.empty()) throw UsageError(say(kUnexpected) + rest.front());
  if (device.empty()) throw UsageError(say(kNoDevice));
  if (device.size() > 2 || (device.size() == 2 && device.back().name == u"Port")) {
    throw UsageError(say(kTwoDevices));
  }
  listen.assignments = std::move(device);
  listen.assignments.insert(listen.assignments.end(), others.begin(), others.end());
  return listen;
}

bool flagFrom(const Assignment& assignment) {
  if (assignment.value == "true") return true;
  if (assignment.value == "false") return false;
  throw UsageError(toUtf8(assignment.name) + say(kNotAFlag));
}

void assign(Component& component, const Assignment& assignment) {
  const std::u16string text = toHostText(assignment.value);
  tVariant value;
  switch (typeOf(assignment.name)) {
    case ParameterType::kText:
      value = textVariant(text);
      break;
    case ParameterType::kFlag:
      value = boolVariant(flagFrom(assignment));
      break;
    case ParameterType::kNumber:
      value = numberVariant(integerFrom(assignment.value, toUtf8(assignment.name).c_str(),
                                        std::numeric_limits<std::int32_t>::min(), kLargest));
      break;
  }
  if (component.setParameter(assignment.name, value)) return;
  throw UsageError(say(kUnknownParameter) + toUtf8(assignment.name));
}

// The local time of an event, with milliseconds; `format` is strftime's for the rest.
std::string timeText(const Event& event, const char* format, const char* zone) {
  using namespace std::chrono;
  const std::time_t seconds = system_clock::to_time_t(floor<std::chrono::seconds>(event.time));
  const auto milliseconds =
      duration_cast<std::chrono::milliseconds>(event.time.time_since_epoch()).count() % 1000;
  std::tm local = {};
  localtime_r(&seconds, &local);
  std::ostringstream text;
  text << std::put_time(&local, format) << '.' << std::setw(3) << std::setfill('0') << milliseconds
       << std::put_time(&local, zone);
  return text.str();
}

// Control characters as their pictures: they would disturb the terminal, or not be seen.
std::u16string withPictures(std::u16string text) {
  for (char16_t& unit : text) {
    if (unit < 0x20) unit = static_cast<char16_t>(0x2400 + unit);
    if (unit == 0x7F) unit = 0x2421;
  }
  return text;
}

void print(const Event& event, bool json) {
  if (json) {
    const nlohmann::ordered_json object = {{"time", timeText(event, "%FT%T", "%z")},
                                           {"source", toUtf8(event.source)},
                                           {"event", toUtf8(event.name)},
                                           {"data", toUtf8(event.data)}};
    std::cout << object.dump() << std::endl;
  } else {
    std::cout << timeText(event, "%T", "") << "  " << toUtf8(event.source) << "  "
              << toUtf8(event.name) << "  " << toUtf8(withPictures(event.data)) << std::endl;
  }
}

// Prints events until `count` are out or a signal asks for the end.
void printUntilEnd(EventQueue& events, const ListenOptions& listen, const EndSignals& end) {
  for (std::size_t printed = 0; printed < listen.count;) {
    pollfd waits[] = {{events.descriptor(), POLLIN, 0}, {end.descriptor(), POLLIN, 0}};
    if (poll(waits, 2, -1) < 0) continue;
    if (waits[1].revents) return;
    if (const auto event = events.take(std::chrono::milliseconds(0))) {
      print(*event, listen.json);
      ++printed;
    }
  }
}

}  // namespace

int runListen(ComponentLibrary& library, const Arguments& arguments) {
  const ListenOptions listen = listenOptionsFrom(arguments);
  const EndSignals end;
  Component component(library, listen.className);
  component.object().SetLocale(userLocale());
  for (const Assignment& assignment : listen.assignments) assign(component, assignment);
  const std::optional<std::u16string> id = component.open();
  if (!id) throw std::runtime_error(toUtf8(component.lastError()));
  std::cerr << say(kListening) << toUtf8(*id) << say(kUntil) << std::endl;
  printUntilEnd(component.events(), listen, end);
  component.close(*id);
  // What was scanned before the device was closed has been scanned.
  while (const auto event = component.events().take(std::chrono::milliseconds(0))) {
    print(*event, listen.json);
  }
  return 0;
}

}  // namespace terminal
