// A keyboard of the X server, grabbed or listened to, which may go and come back.
#pragma once

#include <X11/extensions/XInput2.h>

#include <chrono>
#include <optional>
#include <string>

#include "devices/InputDeviceFactories.h"
#include "devices/XConnection.h"

namespace quorvel {

// A keyboard that goes (it is unplugged or switched off, or another virtual terminal comes to the
// front) is grabbed or listened to again as soon as one of the same name is there. Used on one
// thread after another.
class KeyboardClaim {
 public:
  // `connection` is not empty and outlives this object. It will get hierarchy events.
  KeyboardClaim(const XConnection& connection, const InputDeviceKeyboardFactory& factory);

  // Grabs the factory's keyboard, or starts listening to it: of several with the name, the last
  // one. False when there is none, when another client has grabbed it, or when the server has no
  // input extension.
  bool take();

  // Gives the keyboard back.
  void release();

  // Takes a change of the server's devices. True when the keyboard has gone or come, so that what
  // it has typed so far will not be continued.
  bool handle(const XIHierarchyEvent& event);

  // After how long retry() is to be called: set while another client has grabbed a keyboard that
  // came back, because no event tells when it gives it up.
  std::optional<std::chrono::milliseconds> retryInterval() const;
  void retry() { regain(); }

  // Whether a key is of this keyboard.
  bool accepts(const XIDeviceEvent& key);

  // The major opcode of the input extension's events; 0 without the extension.
  int inputExtension() const { return inputExtension_; }

 private:
  void regain();
  bool subscribe() const;

  const XConnection& connection_;
  const std::string name_;
  const bool listenOnly_;
  int inputExtension_ = 0;
  std::optional<int> deviceId_;
  unsigned long firstRequest_ = 0;  // whose answer, or a later one, the device's keys follow
  bool held_ = false;               // grabbed or listened to
  bool settled_ = true;     // stays with this device, even when a later one has the name, too
  bool searching_ = false;  // a search was broken off
};

}  // namespace quorvel
