#include "devices/InputDeviceFactories.h"

#include "devices/InputDeviceComPort.h"
#include "devices/InputDeviceKeyboard.h"

namespace quorvel {

std::unique_ptr<InputDevice> InputDeviceComPortFactory::create(const DataCallback& callback) {
  auto device = std::make_unique<InputDeviceComPort>(callback);
  if (!device->start(*this)) return nullptr;
  return device;
}

std::unique_ptr<InputDevice> InputDeviceKeyboardFactory::create(const DataCallback& callback) {
  auto device = std::make_unique<InputDeviceKeyboard>(callback);
  if (!device->start(*this)) return nullptr;
  return device;
}

}  // namespace quorvel
