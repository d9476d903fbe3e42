#include "tests/rig/XClient.h"

#include <X11/Xatom.h>
#include <X11/extensions/XInput2.h>
#include <X11/extensions/XTest.h>
#include <poll.h>

#include <stdexcept>
#include <vector>

#include "tests/rig/Patience.h"

namespace rig {
namespace {

// The server's device list.
struct DeviceInfoFreer {
  void operator()(XIDeviceInfo* info) const { XIFreeDeviceInfo(info); }
};
using DeviceInfo = std::unique_ptr<XIDeviceInfo[], DeviceInfoFreer>;

// Types on the keyboard that is paired with the client's pointer.
class XTestKeyboard : public terminal::VirtualKeyboard {
 public:
  explicit XTestKeyboard(Display* display) : display_(display) {}
  void press(terminal::Key key) override { send(key, True); }
  void release(terminal::Key key) override { send(key, False); }

 private:
  void send(terminal::Key key, Bool down) {
    XTestFakeKeyEvent(display_, static_cast<unsigned>(key), down, CurrentTime);
    XSync(display_, False);
  }

  Display* display_;
};

}  // namespace

XClient::XClient(const std::string& display) : display_(XOpenDisplay(display.c_str())) {
  if (!display_) throw std::runtime_error("cannot open display " + display);
  int major = 2, minor = 0;
  XIQueryVersion(get(), &major, &minor);
}

Window XClient::openWindow(Window parent) {
  if (parent == None) parent = DefaultRootWindow(get());
  const Window window = XCreateSimpleWindow(get(), parent, 0, 0, 50, 50, 0, 0, 0);
  XSelectInput(get(), window, KeyPressMask);
  XMapWindow(get(), window);
  // A window manager shows a window in its own time.
  await("a visible window", [&] {
    XWindowAttributes attributes = {};
    return XGetWindowAttributes(get(), window, &attributes) != 0 &&
           attributes.map_state == IsViewable;
  });
  return window;
}

void XClient::closeWindow(Window window) {
  XDestroyWindow(get(), window);
  XSync(get(), False);
}

void XClient::setProcess(Window window, pid_t process) {
  const long value = process;
  XChangeProperty(get(), window, XInternAtom(get(), "_NET_WM_PID", False), XA_CARDINAL, 32,
                  PropModeReplace, reinterpret_cast<const unsigned char*>(&value), 1);
  XSync(get(), False);
}

void XClient::removeProcess(Window window) {
  XDeleteProperty(get(), window, XInternAtom(get(), "_NET_WM_PID", False));
  XSync(get(), False);
}

void XClient::focus(Window window, int revertTo) {
  XSetInputFocus(get(), window, revertTo, CurrentTime);
  XSync(get(), False);
}

bool XClient::hasFocus(pid_t process) {
  Window window = None;
  int revertTo = 0;
  XGetInputFocus(get(), &window, &revertTo);
  if (window == None || window == PointerRoot) return false;
  Atom type = None;
  int format = 0;
  unsigned long count = 0, left = 0;
  unsigned char* value = nullptr;
  XGetWindowProperty(get(), window, XInternAtom(get(), "_NET_WM_PID", False), 0, 1, False,
                     XA_CARDINAL, &type, &format, &count, &left, &value);
  const std::unique_ptr<unsigned char, decltype(&XFree)> owner(value, &XFree);
  return count == 1 && *reinterpret_cast<const long*>(value) == process;
}

void XClient::focusOf(int keyboard, Window window) {
  XISetFocus(get(), keyboard, window, CurrentTime);
  XSync(get(), False);
}

void XClient::grabFocusOn(Window window, int keyboard) {
  unsigned char bits[XIMaskLen(XI_FocusOut)] = {};
  XISetMask(bits, XI_FocusIn);
  XISetMask(bits, XI_FocusOut);
  XIEventMask mask{.deviceid = keyboard, .mask_len = sizeof(bits), .mask = bits};
  XIGrabModifiers modifiers{.modifiers = static_cast<int>(XIAnyModifier), .status = 0};
  if (XIGrabFocusIn(get(), keyboard, window, XIGrabModeAsync, XIGrabModeAsync, False, &mask, 1,
                    &modifiers) != 0) {
    throw std::runtime_error("the focus cannot be grabbed");
  }
}

void XClient::setClientPointer(Window window, int pointer) {
  XISetClientPointer(get(), window, pointer);
  XSync(get(), False);
}

bool XClient::isWatched(Window window, long mask) {
  XWindowAttributes attributes = {};
  XGetWindowAttributes(get(), window, &attributes);
  return (attributes.all_event_masks & mask) != 0;
}

std::optional<terminal::Key> XClient::takeKey(std::chrono::milliseconds patience) {
  const auto deadline = std::chrono::steady_clock::now() + patience;
  XEvent event;
  while (!XCheckTypedEvent(get(), KeyPress, &event)) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
        deadline - std::chrono::steady_clock::now());
    pollfd connection{.fd = ConnectionNumber(get()), .events = POLLIN, .revents = 0};
    if (left.count() <= 0 || poll(&connection, 1, static_cast<int>(left.count())) == 0) return {};
  }
  return static_cast<terminal::Key>(event.xkey.keycode);
}

int XClient::device(const std::string& name) {
  const std::vector<int> found = devices(name);
  if (found.empty()) throw std::runtime_error("the X server has no device " + name);
  return found.front();
}

std::vector<int> XClient::devices(const std::string& name) {
  int count = 0;
  const DeviceInfo all(XIQueryDevice(get(), XIAllDevices, &count));
  std::vector<int> found;
  for (int i = 0; i < count; ++i) {
    const XIDeviceInfo& device = all[static_cast<std::size_t>(i)];
    if (device.name == name) found.push_back(device.deviceid);
  }
  return found;
}

bool XClient::grab(int device) {
  unsigned char bits[1] = {};
  XISetMask(bits, XI_KeyPress);
  XIEventMask mask{.deviceid = device, .mask_len = sizeof(bits), .mask = bits};
  return XIGrabDevice(get(), device, DefaultRootWindow(get()), CurrentTime, None, XIGrabModeAsync,
                      XIGrabModeAsync, False, &mask) == XIGrabSuccess;
}

void XClient::ungrab(int device) {
  XIUngrabDevice(get(), device, CurrentTime);
  XSync(get(), False);
}

void XClient::setEnabled(int device, bool enabled) {
  unsigned char value = enabled;
  XIChangeProperty(get(), device, XInternAtom(get(), "Device Enabled", False), XA_INTEGER, 8,
                   PropModeReplace, &value, 1);
  XSync(get(), False);
}

terminal::VirtualKeyboard& XClient::xTestKeyboardOf(const std::string& master) {
  XISetClientPointer(get(), None, device(master + " pointer"));
  if (!xTestKeyboard_) xTestKeyboard_ = std::make_unique<XTestKeyboard>(get());
  return *xTestKeyboard_;
}

void XClient::addMaster(const std::string& name) {
  std::string copy = name;
  XIAnyHierarchyChangeInfo change;
  change.add = {.type = XIAddMaster, .name = copy.data(), .send_core = True, .enable = True};
  XIChangeHierarchy(get(), &change, 1);
  XSync(get(), False);
}

void XClient::removeMaster(int keyboard) {
  XIAnyHierarchyChangeInfo change;
  change.remove = {.type = XIRemoveMaster,
                   .deviceid = keyboard,
                   .return_mode = XIFloating,
                   .return_pointer = 0,
                   .return_keyboard = 0};
  XIChangeHierarchy(get(), &change, 1);
  XSync(get(), False);
}

}  // namespace rig
