// A scanner that types like a keyboard.
#pragma once

#include <memory>

#include "devices/InputDevice.h"
#include "devices/InputDeviceFactories.h"
#include "devices/KeyboardReader.h"
#include "util/PosixThread.h"

namespace quorvel {

// Reads the keys of one X input device into messages, each ended by the end byte. The keyboard is
// grabbed, so that no other client gets its keys, or shared when listening only. Keys typed while a
// window of another process has the focus are ignored.
class InputDeviceKeyboard : public InputDevice {
 public:
  explicit InputDeviceKeyboard(const DataCallback& callback) : InputDevice(callback) {}

  // Waits for a message that is being delivered; otherwise takes a few milliseconds. Inside the
  // callback it returns at once, and the reader ends by itself when the callback has returned.
  ~InputDeviceKeyboard() override;

  // Grabs or listens to the factory's keyboard and starts the reader thread. False when there is no
  // display or no device of that name, when another client has grabbed it, or when no thread can be
  // created. Called once, by the factory.
  bool start(const InputDeviceKeyboardFactory& factory);

 private:
  static void* ThreadFunction(void* reader);

  std::shared_ptr<KeyboardReader> reader_;
  PosixThread thread_;
};

}  // namespace quorvel
