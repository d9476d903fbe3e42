// A scanner that types like a keyboard.
#pragma once

#include <X11/extensions/XInput2.h>

#include <atomic>
#include <optional>
#include <string>

#include "devices/FocusOwner.h"
#include "devices/InputDevice.h"
#include "devices/InputDeviceFactories.h"
#include "devices/XConnection.h"
#include "util/Handles.h"
#include "util/PosixThread.h"

namespace quorvel {

// Reads the keys of one X input device into messages, each ended by the end byte. The keyboard is
// grabbed, so that what it types reaches nobody else; or it is shared, when listening only. A key
// typed while a window of another process has the focus is ignored.
class InputDeviceKeyboard : public InputDevice {
 public:
  explicit InputDeviceKeyboard(const DataCallback& callback) : InputDevice(callback) {}

  // Waits for a message that is being delivered; else it takes a few milliseconds.
  ~InputDeviceKeyboard() override;

  // Takes hold of the factory's keyboard and starts the reader thread. False when there is no
  // display, no device of that name, someone else has grabbed it, or no thread is to be had. Called
  // once, by the factory.
  bool start(const InputDeviceKeyboardFactory& factory);

 private:
  bool connect();
  bool subscribe();
  void ungrab() const;

  static void* ThreadFunction(void* device);
  void ReadThread() noexcept;
  // Rests until there is something to be read from the display connection, or the device stops.
  void waitForInput() const;
  void takeNextEvent();
  void takeKey(const XIDeviceEvent& key);
  bool isGroupSeparator(unsigned long keysym, int modifiers) const;
  // The byte that a key with this symbol types; none for a key that types nothing.
  std::optional<char> byteTyped(unsigned long keysym, int modifiers) const;
  void deliverMessage();

  PosixThread thread_;
  std::atomic<bool> running_ = false;
  FileDescriptor stop_;  // readable when the reader is to look at the flag
  char endByte_ = '\r';
  unsigned long groupSeparator_ = 0;  // keysym; 0 is no key
  XConnection connection_;
  Window root_ = None;
  int deviceId_ = -1;  // -1 until the device is found
  bool listenOnly_ = false;

  // Of the reader thread.
  int inputExtension_ = 0;  // the major opcode of its events
  std::optional<FocusOwner> focus_;
  std::string message_;  // its bytes so far
};

}  // namespace quorvel
