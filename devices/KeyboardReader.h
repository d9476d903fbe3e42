// The loop that reads a keyboard, and what it needs to live.
#pragma once

#include <atomic>
#include <optional>
#include <string>
#include <thread>

#include "devices/FocusTracker.h"
#include "devices/InputDevice.h"
#include "devices/InputDeviceFactories.h"
#include "devices/KeyboardClaim.h"
#include "devices/KeyboardMessage.h"
#include "devices/XConnection.h"
#include "util/Handles.h"
#include "util/SignalMask.h"

namespace quorvel {

// Owned by the device and by the reader's thread alike: the callback may destroy the device.
class KeyboardReader {
 public:
  explicit KeyboardReader(const DataCallback& callback) : callback_(callback) {}
  KeyboardReader(const KeyboardReader&) = delete;
  KeyboardReader& operator=(const KeyboardReader&) = delete;

  // Grabs or listens to the factory's keyboard. False when there is no display or no device of that
  // name, or when another client has grabbed it. Called once, on the host's thread, whose signal
  // mask the callback will run with.
  bool open(const InputDeviceKeyboardFactory& factory);

  // Reads and delivers until stop() is called or the X server goes away, then releases the
  // keyboard. Lets the unwinding of a thread pass that the callback ends.
  void ReadThread();

  // Makes ReadThread() return after the event that it is handling. No further message is delivered.
  // Called inside the callback, releases the keyboard at once, so that the host may open it again.
  // Any thread.
  void stop();

 private:
  void release();
  void readOnce();
  // The next event that the server has sent; false when there is none, or the connection is lost.
  bool nextEvent(XEvent& event) const;
  // Waits for something to read from the display connection, for stop(), or for the time to try
  // again to grab the keyboard.
  void waitForInput();
  void handle(XEvent& event);
  void handleHierarchy(const XIHierarchyEvent& change);
  void handleKey(const XIDeviceEvent& key);
  void deliver(const std::string& message) const;

  const DataCallback callback_;
  std::optional<SignalMask> hostSignals_;  // of the thread that opened the device
  std::atomic<bool> running_ = true;
  std::atomic<std::thread::id> thread_;  // that runs ReadThread()
  FileDescriptor stop_;                  // becomes readable when the reader is to stop
  XConnection connection_;
  std::optional<KeyboardClaim> keyboard_;
  std::optional<FocusTracker> focus_;
  std::optional<KeyboardMessage> message_;
};

}  // namespace quorvel
