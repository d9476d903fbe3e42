// What the driver asks an X server, and owning types for what Xlib hands out. Each query goes
// through the connection's guard: when the server is lost it answers as if there were nothing.
#pragma once

#include <X11/Xlib.h>
#include <X11/extensions/XInput.h>

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "devices/XConnection.h"

namespace quorvel {

struct XFreeDeleter {
  void operator()(void* data) const { XFree(data); }
};

// Memory that Xlib allocated: a property's value, a name, a list of windows.
template <typename T>
using XOwned = std::unique_ptr<T, XFreeDeleter>;

// The input devices of an X server, as XListInputDevices gives them, in the server's order. Empty
// when the server has no input extension or the connection is lost.
class XDeviceList {
 public:
  explicit XDeviceList(const XConnection& connection);

  const XDeviceInfo* begin() const { return devices_.get(); }
  const XDeviceInfo* end() const { return devices_.get() + count_; }

 private:
  struct Freer {
    void operator()(XDeviceInfo* devices) const { XFreeDeviceList(devices); }
  };
  int count_ = 0;
  std::unique_ptr<XDeviceInfo, Freer> devices_;
};

// The names of `atoms`, in one round trip; an empty name where the server knows none.
std::vector<std::string> atomNames(const XConnection& connection, std::span<const Atom> atoms);

// The parent of `window`: `None` for a root. Nothing when the window has gone.
std::optional<Window> parentOf(const XConnection& connection, Window window);

// The first number of a window's property of type CARDINAL, if the window has such a property.
struct CardinalProperty {
  bool windowExists;
  std::optional<unsigned long> value;
};
CardinalProperty readCardinal(const XConnection& connection, Window window, Atom property);

// The data that comes with a generic event, freed with this object. The event must have been taken
// from `connection` and must outlive it.
class XEventData {
 public:
  XEventData(const XConnection& connection, XEvent& event)
      : display_(connection.get()),
        cookie_(event.xcookie),
        present_(XGetEventData(display_, &cookie_) != 0) {}
  ~XEventData() {
    if (present_) XFreeEventData(display_, &cookie_);
  }
  XEventData(const XEventData&) = delete;
  XEventData& operator=(const XEventData&) = delete;

  // The data, when the event is the given one of the extension with this major opcode; else null.
  template <typename T>
  const T* as(int extension, int type) const {
    const bool wanted = present_ && cookie_.extension == extension && cookie_.evtype == type;
    return wanted ? static_cast<const T*>(cookie_.data) : nullptr;
  }

 private:
  Display* display_;
  XGenericEventCookie& cookie_;
  bool present_;
};

}  // namespace quorvel
