#include "devices/KeyboardClaim.h"

#include <X11/extensions/XInput2.h>

#include <utility>

#include "devices/KeyboardList.h"

namespace quorvel {
namespace {

// Short enough not to be noticed by somebody who waits to scan.
constexpr std::chrono::milliseconds kRetryInterval{500};

// Cleaned names are ASCII, so the low bytes are the name. It ends at a zero, as the server's names
// do.
std::string lowBytes(const std::wstring& text) {
  std::string bytes;
  for (const wchar_t symbol : text) {
    const auto byte = static_cast<char>(symbol & 0xFF);
    if (byte == '\0') break;
    bytes += byte;
  }
  return bytes;
}

// The id of the device with this name, the last one when there are several.
std::optional<int> findDevice(const XConnection& connection, const std::string& name) {
  std::optional<int> id;
  for (const XInputDevice& device : listXInputDevices(connection)) {
    if (device.name == name) id = device.id;
  }
  return id;
}

// The major opcode of the input extension, 0 without it.
int inputExtensionOf(const XConnection& connection) {
  int opcode = 0;
  connection.call([&](Display* display) {
    int firstEvent = 0, firstError = 0;
    XQueryExtension(display, "XInputExtension", &opcode, &firstEvent, &firstError);
  });
  return opcode;
}

}  // namespace

KeyboardClaim::KeyboardClaim(const XConnection& connection,
                             const InputDeviceKeyboardFactory& factory)
    : connection_(connection),
      name_(lowBytes(factory.keyboardDevice)),
      listenOnly_(factory.listenOnly),
      inputExtension_(inputExtensionOf(connection)) {
  // Before any query, or a change in between is missed.
  if (inputExtension_ != 0) selectHierarchyEvents(connection);
}

bool KeyboardClaim::take() {
  if (inputExtension_ == 0) return false;
  deviceId_ = findDevice(connection_, name_);
  held_ = deviceId_ && subscribe();
  return held_;
}

bool KeyboardClaim::subscribe() const {
  unsigned char bits[XIMaskLen(XI_KeyRelease)] = {};
  XISetMask(bits, XI_KeyPress);
  XISetMask(bits, XI_KeyRelease);
  XIEventMask mask{.deviceid = *deviceId_, .mask_len = sizeof(bits), .mask = bits};
  int status = BadImplementation;
  connection_.call([&](Display* display) {
    const Window root = DefaultRootWindow(display);
    if (listenOnly_) {
      status = XISelectEvents(display, root, &mask, 1);
      // Listening begins when the server has taken the request, not when it is sent.
      XSync(display, False);
    } else {
      status = XIGrabDevice(display, *deviceId_, root, CurrentTime, None, XIGrabModeAsync,
                            XIGrabModeAsync, False, &mask);
    }
  });
  static_assert(Success == 0 && XIGrabSuccess == 0);
  return status == 0;
}

void KeyboardClaim::release() {
  // X servers crash when a device is ungrabbed that is switched off, as all are while another
  // virtual terminal is in front.
  if (std::exchange(held_, false) && isXInputDeviceEnabled(connection_, *deviceId_)) {
    connection_.call([this](Display* display) {
      XIUngrabDevice(display, *deviceId_, CurrentTime);
      // The host may open the keyboard anew as soon as this has returned.
      XSync(display, False);
    });
  }
}

bool KeyboardClaim::handle(const XIHierarchyEvent& event) {
  constexpr int kRemoved = XISlaveRemoved | XIMasterRemoved;
  const std::optional<int> before = deviceId_;
  bool interrupted = false;
  for (int i = 0; i < event.num_info; ++i) {
    const XIHierarchyInfo& device = event.info[i];
    if (device.deviceid != before) continue;
    interrupted = device.flags & (kRemoved | XIDeviceEnabled | XIDeviceDisabled);
    if (device.flags & kRemoved) {
      deviceId_.reset();
      held_ = false;
    } else if (device.flags & XIDeviceEnabled) {
      // As a rule it is held still.
      held_ = subscribe();
    }
  }
  regain();
  return interrupted || deviceId_ != before;
}

// After a return, several devices of the name may appear one by one, as those of one scanner do;
// the one that would be opened is the last. Which of them is the right one shows when it types.
void KeyboardClaim::regain() {
  searching_ = true;
  if (!deviceId_) settled_ = false;
  if (!settled_) {
    const std::optional<int> found = findDevice(connection_, name_);
    if (found != deviceId_) release();
    deviceId_ = found;
  }
  if (!held_ && deviceId_) {
    firstRequest_ = NextRequest(connection_.get());
    held_ = subscribe();
  }
  searching_ = false;
}

std::optional<std::chrono::milliseconds> KeyboardClaim::retryInterval() const {
  const bool isRefused = deviceId_ && !held_;
  return isRefused || searching_ ? std::optional(kRetryInterval) : std::nullopt;
}

// The server gives the number of a device that has gone to another one. Keys that were on their way
// before this device was claimed are not its own.
bool KeyboardClaim::accepts(const XIDeviceEvent& key) {
  if (key.deviceid != deviceId_ || key.serial < firstRequest_) return false;
  settled_ = true;
  return true;
}

}  // namespace quorvel
