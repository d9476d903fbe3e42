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

// Trimmed names are ASCII, so the low bytes are the name. It ends at a zero, as the server's do.
std::string lowBytes(const std::wstring& text) {
  std::string bytes;
  for (const wchar_t symbol : text) {
    const auto byte = static_cast<char>(symbol & 0xFF);
    if (byte == '\0') break;
    bytes += byte;
  }
  return bytes;
}

// The device of this name; the last one when there are several, -1 when there is none.
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
  return thread_.start(ThreadFunction, this, factory.stackBytes);
}

bool InputDeviceKeyboard::connect() {
  connection_ = XConnection::open();
  if (!connection_) return false;
  int firstEvent = 0, firstError = 0;
  if (!XQueryExtension(connection_.get(), "XInputExtension", &inputExtension_, &firstEvent,
                       &firstError)) {
    return false;
  }
  // The server sends events of the version that a client has asked about.
  int major = 2, minor = 0;
  XIQueryVersion(connection_.get(), &major, &minor);
  root_ = DefaultRootWindow(connection_.get());
  focus_.emplace(connection_);
  return true;
}

bool InputDeviceKeyboard::subscribe() {
  // The length of one byte cuts the mask off before the raw events.
  unsigned char bits[] = {0x0C, 0x60};
  XIEventMask mask{.deviceid = deviceId_, .mask_len = 1, .mask = bits};
  Display* const display = connection_.get();
  if (listenOnly_) {
    const bool selected = XISelectEvents(display, root_, &mask, 1) == Success;
    // Listening begins when the server has taken the request, and not when it is sent.
    XSync(display, False);
    return selected;
  }
  return XIGrabDevice(display, deviceId_, root_, CurrentTime, None, XIGrabModeAsync,
                      XIGrabModeAsync, False, &mask) == XIGrabSuccess;
}

void InputDeviceKeyboard::ungrab() const {
  // X servers crash when a device is ungrabbed that is switched off, as all are while another
  // virtual terminal is in front.
  if (!isXInputDeviceEnabled(connection_, deviceId_)) return;
  XIUngrabDevice(connection_.get(), deviceId_, CurrentTime);
}

void* InputDeviceKeyboard::ThreadFunction(void* device) {
  static_cast<InputDeviceKeyboard*>(device)->ReadThread();
  return nullptr;
}

void InputDeviceKeyboard::ReadThread() noexcept {
  while (running_ && !connection_.lost()) {
    try {
      if (XPending(connection_.get()) > 0) {
        takeNextEvent();
      } else {
        waitForInput();
      }
    } catch (...) {
      // One message is lost to what its receiver throws, or to a lack of memory, not the next ones.
    }
  }
  ungrab();
  try {
    log(std::string(115, '-'));
  } catch (...) {
    // A reader that cannot write its last line has ended all the same.
  }
}

void InputDeviceKeyboard::waitForInput() const {
  // Without a limit of time: to look at the flag every millisecond would cost more than a hundredth
  // of a core for as long as the host runs.
  pollfd waits[] = {{.fd = ConnectionNumber(connection_.get()), .events = POLLIN, .revents = 0},
                    {.fd = stop_.get(), .events = POLLIN, .revents = 0}};
  poll(waits, std::size(waits), -1);
}

void InputDeviceKeyboard::takeNextEvent() {
  XEvent event;
  XNextEvent(connection_.get(), &event);
  const XEventData data(connection_, event);
  if (const auto* key = data.as<XIDeviceEvent>(inputExtension_, XI_KeyPress)) {
    if (!focus_->isAnotherProcess()) takeKey(*key);
  } else if (!data.as<XIDeviceEvent>(inputExtension_, XI_KeyRelease)) {
    focus_->notice(event);
  }
}

void InputDeviceKeyboard::takeKey(const XIDeviceEvent& key) {
  const int modifiers = key.mods.base;
  const KeySym keysym = XkbKeycodeToKeysym(connection_.get(), static_cast<KeyCode>(key.detail), 0,
                                           modifiers & ShiftMask);
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
  KeySym symbol = keysym;
  int missing = 0;
  const int count = XkbTranslateKeySym(connection_.get(), &symbol, static_cast<unsigned>(modifiers),
                                       text, sizeof(text), &missing);
  return count > 0 ? std::optional(text[0]) : std::nullopt;
}

void InputDeviceKeyboard::deliverMessage() {
  std::string message = std::exchange(message_, {});
  if (listenOnly_) message += endByte_;
  callback_(ConvertUTF8Input(raw2Base64(message).c_str()));
}

}  // namespace quorvel
