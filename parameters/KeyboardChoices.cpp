#include "parameters/KeyboardChoices.h"

#include "parameters/SettingsMarkup.h"
#include "util/CodePages.h"
#include "util/Log.h"

namespace quorvel {

std::wstring keyboardChoices(const std::vector<XInputDevice>& devices) {
  std::wstring choices;
  for (const XInputDevice& device : devices) {
    if (!device.isKeyboard) continue;
    log("XDevice settings list element - " + device.rawName);
    log("XDevice settings list element trimmed - " + device.name);
    const std::wstring name = ConvertUTF8Input(device.name.c_str());
    choices += item(name, name);
  }
  return choices;
}

}  // namespace quorvel
