#include "tools/host/XDisplay.h"

#include <X11/extensions/XInput.h>
#include <X11/extensions/XInput2.h>

#include <algorithm>
#include <array>
#include <map>
#include <string_view>

namespace terminal {
namespace {

struct DeviceListFreer {
  void operator()(XDeviceInfo* devices) const { XFreeDeviceList(devices); }
};
using DeviceList = std::unique_ptr<XDeviceInfo, DeviceListFreer>;

struct DeviceInfoFreer {
  void operator()(XIDeviceInfo* devices) const { XIFreeDeviceInfo(devices); }
};
using DeviceInfo = std::unique_ptr<XIDeviceInfo, DeviceInfoFreer>;

// Xlib ends the process after a lost connection unless this is set.
void noteLoss(Display*, void* lost) { *static_cast<bool*>(lost) = true; }

// Xwayland's only keyboard, whatever keyboards there are. Its type is not that of a keyboard.
constexpr std::string_view kXwaylandKeyboard = "xwayland-keyboard";
// Every input device of Xwayland's own.
constexpr std::string_view kXwaylandDevice = "xwayland-";

// A device may go between two requests.
int ignoreError(Display*, XErrorEvent*) { return 0; }

int quietly(Display*) { return 0; }

std::map<int, bool> enabledDevices(Display* display) {
  int count = 0;
  const DeviceInfo all(XIQueryDevice(display, XIAllDevices, &count));
  std::map<int, bool> enabled;
  for (int i = 0; all && i < count; ++i) enabled[all.get()[i].deviceid] = all.get()[i].enabled;
  return enabled;
}

// Readers of the component's use Xlib on other threads.
Display* openDisplay() {
  XInitThreads();
  return XOpenDisplay(nullptr);
}

}  // namespace

std::string formNameOf(std::string name) {
  constexpr std::string_view kMarkup = "&<>\"'";
  const auto isReplaced = [&](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte < 0x20 || byte >= 0x80 || kMarkup.find(c) != kMarkup.npos;
  };
  std::replace_if(name.begin(), name.end(), isReplaced, ' ');
  return name;
}

// Closing a lost connection would send requests on it: it is left to the end of the process.
void XDisplay::Closer::operator()(Display* display) const {
  if (!*lost) XCloseDisplay(display);
}

XDisplay::XDisplay() : display_(openDisplay(), Closer{lost_.get()}) {
  if (!display_) return;
  XSetErrorHandler(ignoreError);
  XSetIOErrorHandler(quietly);
  XSetIOErrorExitHandler(display_.get(), noteLoss, lost_.get());
  int major = 2;
  int minor = 0;
  XIQueryVersion(display_.get(), &major, &minor);
  std::array<unsigned char, XIMaskLen(XI_LASTEVENT)> bits = {};
  XISetMask(bits.data(), XI_HierarchyChanged);
  XIEventMask mask = {XIAllDevices, static_cast<int>(bits.size()), bits.data()};
  XISelectEvents(display_.get(), DefaultRootWindow(display_.get()), &mask, 1);
  XFlush(display_.get());
}

bool XDisplay::devicesMayHaveChanged() {
  bool changed = false;
  while (*this && XEventsQueued(display_.get(), QueuedAfterReading) > 0) {
    XEvent event;
    XNextEvent(display_.get(), &event);
    changed = true;
  }
  return changed;
}

std::vector<XInputDevice> XDisplay::devices() {
  std::vector<XInputDevice> found;
  if (!*this) return found;
  const Atom keyboard = XInternAtom(display_.get(), XI_KEYBOARD, True);
  int count = 0;
  const DeviceList list(XListInputDevices(display_.get(), &count));
  const std::map<int, bool> enabled = enabledDevices(display_.get());
  for (int i = 0; list && i < count; ++i) {
    const XDeviceInfo& device = list.get()[i];
    const auto state = enabled.find(static_cast<int>(device.id));
    const std::string name = formNameOf(device.name ? device.name : "");
    const bool isKeyboard =
        (device.type != None && device.type == keyboard) || name.starts_with(kXwaylandKeyboard);
    found.push_back(
        {static_cast<int>(device.id), name, isKeyboard, state != enabled.end() && state->second});
  }
  if (*lost_) found.clear();
  return found;
}

bool XDisplay::isXwayland() {
  if (!*this) return false;
  int ignored = 0;
  // Servers have this extension from version 23 on.
  if (XQueryExtension(display_.get(), "XWAYLAND", &ignored, &ignored, &ignored)) return true;
  const std::vector<XInputDevice> all = devices();
  return std::any_of(all.begin(), all.end(), [](const XInputDevice& device) {
    return device.name.starts_with(kXwaylandDevice);
  });
}

}  // namespace terminal
