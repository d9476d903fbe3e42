#include "parameters/LinuxParametersTableBuilder.h"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "devices/KeyboardList.h"
#include "devices/LineSpeeds.h"
#include "devices/SerialFamilies.h"
#include "devices/XConnection.h"
#include "parameters/KeyboardChoices.h"
#include "parameters/SettingsMarkup.h"

namespace quorvel {

void LinuxParametersTableBuilder::BuildPortPart() {
  std::wstring ports = item(L"0", text(form_texts::kPortKeyboard));
  for (const SerialFamily& family : kSerialFamilies) {
    ports += GetCOMDevicesList(family.prefix, family.caption, static_cast<int>(family.base));
  }
  append(parameter({.name = L"Port",
                    .caption = text(form_texts::kPort),
                    .type = kNumber,
                    .defaultValue = L"0",
                    .choices = choiceList(ports)}));
}

std::wstring LinuxParametersTableBuilder::GetCOMDevicesList(std::string_view prefix,
                                                            std::wstring_view caption,
                                                            int base) const {
  // Sorted by number: find lists files in directory order.
  std::map<std::int64_t, std::wstring> itemsByNumber;
  for (const std::string& path : findDeviceFiles(prefix)) {
    const std::int64_t number = deviceFileNumber(path, prefix);
    const std::wstring value = std::to_wstring(base + number + 1);
    itemsByNumber.try_emplace(number,
                              item(value, concatenate({caption, std::to_wstring(number + 1)})));
  }
  std::wstring items;
  for (const auto& [number, portItem] : itemsByNumber) items += portItem;
  return items;
}

// The only condition that names the master parameter before the operation.
void LinuxParametersTableBuilder::BuildKeyboardDevicePart() {
  append(parameter({.name = L"KeyboardDevice",
                    .caption = text(form_texts::kKeyboardDevice),
                    .type = kString,
                    .defaultValue = L"",
                    .condition = L" MasterParameterName=\"Port\" MasterParameterOperation=\"Equal\""
                                 L" MasterParameterValue=\"0\"",
                    .choices = choiceList(GetEventDeviceListEnties())}));
}

std::wstring LinuxParametersTableBuilder::GetEventDeviceListEnties() const {
  return keyboardChoices(listXInputDevices(XConnection::open()));
}

void LinuxParametersTableBuilder::BuildCOMPortSpeedPart() {
  std::wstring speeds;
  for (const LineSpeed& speed : kLineSpeeds) {
    const std::wstring number = std::to_wstring(speed.bitsPerSecond);
    speeds += item(number, number);
  }
  append(parameter({.name = L"Speed",
                    .caption = text(form_texts::kSpeed),
                    .type = kNumber,
                    .defaultValue = L"9600",
                    .condition = kForSerialPorts,
                    .choices = choiceList(speeds)}));
}

}  // namespace quorvel
