#include "tools/host/DeviceOptions.h"

#include <limits>
#include <string_view>
#include <utility>

#include "tools/common/HostText.h"
#include "tools/common/HostVariants.h"
#include "tools/host/PortFile.h"

namespace terminal {
namespace {

constexpr Text kNoDevice = {"say which device: --port N or --keyboard NAME",
                            "укажите устройство: --port N или --keyboard ИМЯ"};
constexpr Text kTwoDevices = {"either --port or --keyboard, not both",
                              "либо --port, либо --keyboard, но не оба"};
constexpr Text kNotAssigned = {"--set takes NAME=VALUE, not ",
                               "--set принимает ИМЯ=ЗНАЧЕНИЕ, а не "};
constexpr Text kNotAFlag = {": true or false is expected", ": ожидается true или false"};
constexpr Text kUnknownParameter = {"the component knows no parameter ",
                                    "компонента не знает параметра "};

enum class ParameterType { kNumber, kText, kFlag };

// The parameters that are not numbers. A number sent where a text is expected would be refused.
constexpr std::pair<std::string_view, ParameterType> kOtherTypes[] = {
    {"KeyboardDevice", ParameterType::kText},      {"COMEncoding", ParameterType::kText},
    {"LogFileFolder", ParameterType::kText},       {"EquipmentType", ParameterType::kText},
    {"IgnoreKeyboardState", ParameterType::kFlag},
};

ParameterType typeOf(std::string_view name) {
  for (const auto& [known, type] : kOtherTypes) {
    if (known == name) return type;
  }
  return ParameterType::kNumber;
}

Assignment assignmentFrom(const std::string& text) {
  const std::size_t sign = text.find('=');
  if (sign == text.npos || sign == 0) throw UsageError(say(kNotAssigned) + text);
  return {text.substr(0, sign), text.substr(sign + 1)};
}

std::int32_t numberOf(const Assignment& assignment) {
  using Limits = std::numeric_limits<std::int32_t>;
  return integerFrom(assignment.value, assignment.name.c_str(), Limits::min(), Limits::max());
}

bool flagOf(const Assignment& assignment) {
  if (assignment.value == "true") return true;
  if (assignment.value == "false") return false;
  throw UsageError(assignment.name + say(kNotAFlag));
}

void assign(Component& component, const Assignment& assignment) {
  const std::u16string text = toHostText(assignment.value);
  tVariant value;
  switch (typeOf(assignment.name)) {
    case ParameterType::kText:
      value = textVariant(text);
      break;
    case ParameterType::kFlag:
      value = boolVariant(flagOf(assignment));
      break;
    case ParameterType::kNumber:
      value = numberVariant(numberOf(assignment));
      break;
  }
  if (component.setParameter(toHostText(assignment.name), value)) return;
  throw UsageError(say(kUnknownParameter) + assignment.name);
}

}  // namespace

std::vector<Option> DeviceOptions::table() {
  return {{"port", true, [this](const std::string& value) { port = portFrom(value); }},
          {"keyboard", true, [this](const std::string& value) { keyboard = value; }},
          {"set", true,
           [this](const std::string& value) { parameters.push_back(assignmentFrom(value)); }}};
}

void DeviceOptions::requireDevice() const {
  if (!port && !keyboard) throw UsageError(say(kNoDevice));
  if (port && keyboard) throw UsageError(say(kTwoDevices));
}

std::int32_t DeviceOptions::number(const std::string& name, std::int32_t otherwise) const {
  std::int32_t value = otherwise;
  for (const Assignment& assignment : parameters) {
    if (assignment.name == name) value = numberOf(assignment);
  }
  return value;
}

void DeviceOptions::applyTo(Component& component) const {
  component.setParameter(u"Port", port.value_or(0));
  if (keyboard) component.setParameter(u"KeyboardDevice", toHostText(*keyboard));
  for (const Assignment& assignment : parameters) assign(component, assignment);
}

}  // namespace terminal
