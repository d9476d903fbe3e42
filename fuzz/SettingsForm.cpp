// The settings form for keyboards of any name: it can be read, and the value of each choice names
// its keyboard again.
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "devices/KeyboardList.h"
#include "fuzz/Require.h"
#include "parameters/KeyboardChoices.h"
#include "parameters/SettingsMarkup.h"
#include "tools/common/FormDocument.h"
#include "util/DeviceNames.h"
#include "util/Text.h"

namespace {

using Choices = std::vector<terminal::FormChoice>;

std::vector<quorvel::XInputDevice> anyDevices(FuzzedDataProvider& input) {
  std::vector<quorvel::XInputDevice> devices;
  while (input.remaining_bytes() > 0) {
    // The X server's names are C strings.
    const std::string name = input.ConsumeRandomLengthString().c_str();
    devices.push_back({.id = static_cast<int>(devices.size()),
                       .rawName = name,
                       .name = quorvel::settingsDeviceName(name),
                       .isKeyboard = input.ConsumeBool()});
  }
  return devices;
}

Choices choicesIn(const std::wstring& choiceList) {
  const std::wstring document =
      quorvel::concatenate({L"<Settings><Page><Group><Parameter Name=\"KeyboardDevice\">",
                            choiceList, L"</Parameter></Group></Page></Settings>"});
  const auto pages = terminal::readForm(quorvel::wstr2str(document));
  return pages.at(0).groups.at(0).parameters.at(0).choices.value();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider input(data, size);
  const std::vector<quorvel::XInputDevice> devices = anyDevices(input);
  const std::wstring items = quorvel::keyboardChoices(devices);
  require(std::all_of(items.begin(), items.end(),
                      [](wchar_t character) { return character >= L' ' && character <= 0x7F; }));

  auto choice = choicesIn(quorvel::choiceList(items));
  auto next = choice.begin();
  for (const quorvel::XInputDevice& device : devices) {
    if (!device.isKeyboard) continue;
    require(next != choice.end());
    require(next->value == device.name && next->text == device.name);
    ++next;
  }
  require(next == choice.end());
  return 0;
}
