// The devices that the test window listens to.
#include "devices/KeyboardList.h"
#include "devices/SerialFamilies.h"
#include "devices/XConnection.h"
#include "dialog/DevTestDialogLinux.h"
#include "dialog/RowTexts.h"
#include "util/Text.h"

namespace quorvel {

// Only the number of files counts: each family is assumed to be numbered from 0 without gaps.
void DevTestDialogLinux::ListenPorts() {
  for (const SerialFamily& family : kSerialFamilies) {
    const auto count = static_cast<std::uint32_t>(findDeviceFiles(family.prefix).size());
    for (std::uint32_t i = 0; i < count; ++i) DoListenPort(family.firstPort() + i);
  }
}

void DevTestDialogLinux::DoListenPort(unsigned port) {
  comPortFactory_.port = port;
  listen(shortNameOf(port), comPortFactory_);
}

void DevTestDialogLinux::ListenKeyboardDevices() {
  for (const XInputDevice& device : listXInputDevices(XConnection::open())) {
    if (device.isKeyboard) DoListenKeyboardDevice(str2wstr(device.name));
  }
}

void DevTestDialogLinux::DoListenKeyboardDevice(const std::wstring& name) {
  keyboardFactory_.port = 0;
  keyboardFactory_.keyboardDevice = name;
  listen(name, keyboardFactory_);
}

void DevTestDialogLinux::listen(const std::wstring& source, InputDeviceFactory& factory) {
  std::shared_ptr<InputDevice>& listener = listeners_[source];
  // Of devices that share a name, the first is listened to.
  if (listener) return;
  listener = factory.create([this, source](const std::wstring& data) { OnInput(source, data); });
}

void DevTestDialogLinux::OnInput(const std::wstring& source, const std::wstring& data) {
  if (data.empty()) return;
  rows_.push({sourceCell(source), dataCell(data, outputDataType_)});
}

}  // namespace quorvel
