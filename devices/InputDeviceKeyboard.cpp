#include "devices/InputDeviceKeyboard.h"

#include <X11/XKBlib.h>
#include <X11/keysym.h>
#include <poll.h>
#include <sys/eventfd.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <utility>

#include "devices/KeyboardList.h"
#include "devices/NonPrintableKeys.h"
#include "devices/XQueries.h"
#include "util/Base64.h"
#include "util/CodePages.h"
#include "util/Log.h"

namespace quorvel {
namespace {

constexpr char kGroupSeparatorByte = 29;

// The last byte of the suffix in the host's encoding.
char endByteOf(const std::wstring& suffix, char otherwise) {
  char bytes[10];
  // NOLINTNEXTLINE(concurrency-mt-unsafe): the C library of Linux keeps no state here
  const std::size_t count = std::wcstombs(bytes, suffix.c_str(), sizeof(bytes));
  return count == 0 || count == static_cast<std::size_t>(-1) ? otherwise : bytes[count - 1];
}

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

// The id of the device with this name: the last one when there are several, -1 without one.
int findDevice(const XConnection& connection, const std::string& name) {
  int id = -1;
  for (const XInputDevice& device : listXInputDevices(connection)) {
    if (device.name == name) id = device.id;
  }
  return id;
}

}  // namespace

std::unique_ptr<InputDevice> InputDeviceKeyboardFactory::create(const DataCallback& callback) {
  auto device = std::make_unique<InputDeviceKeyboard>(callback);
  if (!device->start(*this)) return nullptr;
  return device;
}

InputDeviceKeyboard::~InputDeviceKeyboard() {
  running_ = false;
  if (stop_) eventfd_write(stop_.get(), 1);
  thread_.join();
}

bool InputDeviceKeyboard::start(const InputDeviceKeyboardFactory& factory) {
  endByte_ = endByteOf(factory.suffix, endByte_);
  groupSeparator_ = NonPrintableKeys::getKeyLinuxData(factory.gsSymbolKey);
  listenOnly_ = factory.listenOnly;
  if (!connect()) return false;
  deviceId_ = findDevice(connection_, lowBytes(factory.keyboardDevice));
  if (deviceId_ == -1 || !subscribe() || connection_.lost()) return false;
  stop_ = FileDescriptor(eventfd(0, EFD_CLOEXEC));
  if (!stop_) return false;
  running_ = true;
  return thread_.start(ThreadFunction, this, factory.forTestWindow ? kSmallStack : 0);
}

bool InputDeviceKeyboard::connect() {
  connection_ = XConnection::open();
  if (!connection_) return false;
  connection_.call([this](Display* display) {
    int firstEvent = 0, firstError = 0, major = 2, minor = 0;
    if (!XQueryExtension(display, "XInputExtension", &inputExtension_, &firstEvent, &firstError)) {
      return;
    }
    // The server sends events of the version that a client has asked about.
    XIQueryVersion(display, &major, &minor);
  });
  if (connection_.lost() || inputExtension_ == 0) return false;
  root_ = DefaultRootWindow(connection_.get());
  focus_.emplace(connection_);
  return true;
}

bool InputDeviceKeyboard::subscribe() {
  unsigned char bits[XIMaskLen(XI_KeyRelease)] = {};
  XISetMask(bits, XI_KeyPress);
  XISetMask(bits, XI_KeyRelease);
  XIEventMask mask{.deviceid = deviceId_, .mask_len = sizeof(bits), .mask = bits};
  int status = BadImplementation;
  connection_.call([&](Display* display) {
    if (listenOnly_) {
      status = XISelectEvents(display, root_, &mask, 1);
      // Listening begins when the server has taken the request, not when it is sent.
      XSync(display, False);
    } else {
      status = XIGrabDevice(display, deviceId_, root_, CurrentTime, None, XIGrabModeAsync,
                            XIGrabModeAsync, False, &mask);
    }
  });
  // Also XIGrabSuccess.
  return status == Success;
}

void InputDeviceKeyboard::ungrab() const {
  // X servers crash when a device is ungrabbed that is switched off, as all are while another
  // virtual terminal is in front.
  if (!isXInputDeviceEnabled(connection_, deviceId_)) return;
  connection_.call([this](Display* display) { XIUngrabDevice(display, deviceId_, CurrentTime); });
}

void* InputDeviceKeyboard::ThreadFunction(void* device) {
  static_cast<InputDeviceKeyboard*>(device)->ReadThread();
  return nullptr;
}

void InputDeviceKeyboard::ReadThread() noexcept {
  while (running_ && !connection_.lost()) {
    try {
      XEvent event;
      if (nextEvent(event)) {
        takeEvent(event);
      } else {
        waitForInput();
      }
    } catch (...) {
      // An exception from the receiver, or a lack of memory, loses one message and not the next
      // ones.
    }
  }
  ungrab();
  try {
    log(std::string(115, '-'));
  } catch (...) {
    // The log line is not worth the process.
  }
}

bool InputDeviceKeyboard::nextEvent(XEvent& event) const {
  bool taken = false;
  connection_.call([&](Display* display) {
    taken = XPending(display) > 0;
    if (taken) XNextEvent(display, &event);
  });
  return taken;
}

// Without a timeout: waking up every millisecond to look at the flag would cost more than a
// hundredth of a core for as long as the host runs.
void InputDeviceKeyboard::waitForInput() const {
  if (connection_.lost()) return;
  pollfd waits[] = {{.fd = ConnectionNumber(connection_.get()), .events = POLLIN, .revents = 0},
                    {.fd = stop_.get(), .events = POLLIN, .revents = 0}};
  poll(waits, std::size(waits), -1);
}

void InputDeviceKeyboard::takeEvent(XEvent& event) {
  const XEventData data(connection_, event);
  if (const auto* key = data.as<XIDeviceEvent>(inputExtension_, XI_KeyPress)) {
    if (!focus_->belongsToAnotherProcess()) takeKey(*key);
  } else if (!data.as<XIDeviceEvent>(inputExtension_, XI_KeyRelease)) {
    focus_->handle(event);
  }
}

void InputDeviceKeyboard::takeKey(const XIDeviceEvent& key) {
  const int modifiers = key.mods.base;
  KeySym keysym = NoSymbol;
  connection_.call([&](Display* display) {
    keysym =
        XkbKeycodeToKeysym(display, static_cast<KeyCode>(key.detail), 0, modifiers & ShiftMask);
  });
  if (isGroupSeparator(keysym, modifiers)) {
    message_ += kGroupSeparatorByte;
    return;
  }
  if (listenOnly_) {
    const std::string name = NonPrintableKeys::getKeyShortName(keysym);
    if (!name.empty()) {
      message_ += name;
      return;
    }
  }
  const std::optional<char> byte = byteTyped(keysym, modifiers);
  if (!byte) return;
  if (*byte == endByte_) {
    deliverMessage();
  } else {
    message_ += *byte;
  }
}

bool InputDeviceKeyboard::isGroupSeparator(unsigned long keysym, int modifiers) const {
  return (keysym == XK_bracketright && (modifiers & ControlMask)) || keysym == XK_F8 ||
         (keysym == groupSeparator_ && keysym != NoSymbol);
}

std::optional<char> InputDeviceKeyboard::byteTyped(unsigned long keysym, int modifiers) const {
  char text[100] = {};
  int count = 0;
  connection_.call([&](Display* display) {
    KeySym symbol = keysym;
    int missing = 0;
    count = XkbTranslateKeySym(display, &symbol, static_cast<unsigned>(modifiers), text,
                               sizeof(text), &missing);
  });
  return count > 0 ? std::optional(text[0]) : std::nullopt;
}

void InputDeviceKeyboard::deliverMessage() {
  std::string message = std::exchange(message_, {});
  if (listenOnly_) message += endByte_;
  callback_(ConvertUTF8Input(raw2Base64(message).c_str()));
}

}  // namespace quorvel
