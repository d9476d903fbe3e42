// A scanner that types like a keyboard.
#pragma once

#include <X11/extensions/XInput2.h>

#include <atomic>
#include <optional>
#include <string>

#include "devices/FocusTracker.h"
#include "devices/InputDevice.h"
#include "devices/InputDeviceFactories.h"
#include "devices/XConnection.h"
#include "util/Handles.h"
#include "util/PosixThread.h"

namespace quorvel {

// Reads the keys of one X input device into messages, each ended by the end byte. The keyboard is
// grabbed, so that no other client gets its keys, or shared when listening only. Keys typed while a
// window of another process has the focus are ignored.
class InputDeviceKeyboard : public InputDevice {
 public:
  explicit InputDeviceKeyboard(const DataCallback& callback) : InputDevice(callback) {}

  // Waits for a message that is being delivered; otherwise takes a few milliseconds.
  ~InputDeviceKeyboard() override;

  // Grabs or listens to the factory's keyboard and starts the reader thread. False when there is no
  // display or no device of that name, when another client has grabbed it, or when no thread can be
  // created. Called once, by the factory.
  bool start(const InputDeviceKeyboardFactory& factory);

 private:
  bool connect();
  bool subscribe();
  void ungrab() const;

  static void* ThreadFunction(void* device);
  void ReadThread() noexcept;
  // The next event that the server has sent; false when there is none, or the connection is lost.
  bool nextEvent(XEvent& event) const;
  // Waits for something to read from the display connection, or for the device to stop.
  void waitForInput() const;
  void takeEvent(XEvent& event);
  void takeKey(const XIDeviceEvent& key);
  bool isGroupSeparator(unsigned long keysym, int modifiers) const;
  // The byte that a key with this symbol types, if it types any.
  std::optional<char> byteTyped(unsigned long keysym, int modifiers) const;
  void deliverMessage();

  PosixThread thread_;
  std::atomic<bool> running_ = false;
  FileDescriptor stop_;  // becomes readable when the reader is to stop
  char endByte_ = '\r';
  unsigned long groupSeparator_ = 0;  // keysym; 0 is no key
  XConnection connection_;
  Window root_ = None;
  int deviceId_ = -1;  // -1 until the device is found
  bool listenOnly_ = false;

  // Of the reader thread.
  int inputExtension_ = 0;  // the major opcode of its events
  std::optional<FocusTracker> focus_;
  std::string message_;  // its bytes so far
};

}  // namespace quorvel
