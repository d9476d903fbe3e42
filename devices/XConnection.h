// Connections of the driver's own to the X server, and owning types for what Xlib hands out.
#pragma once

#include <X11/Xlib.h>
#include <X11/extensions/XInput.h>

#include <atomic>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace quorvel {

// Puts the driver's X error handlers on top of whatever handlers stand now. They keep errors on the
// driver's own connections from ending the host process, and pass every other error on to the
// handlers that stood before. Every XConnection does this when it opens; call it also after
// anything else that installs handlers of its own, such as preparing GTK. Any thread, any number of
// times.
void installXErrorHandlers();

// Counts a display that a toolkit has opened for the driver among the driver's own. `lost` is
// called with `data`, on the thread that notices, when the server goes away. The display stays the
// toolkit's and is never closed.
void adoptDisplay(Display* display, XIOErrorExitHandler lost, void* data);

// A connection of the driver's own to the default X display. Protocol errors on it are swallowed;
// when the server goes away the connection is lost, and further requests on it fail without effect.
// It may be moved, and used by one thread after another, but not by two at a time: Xlib cannot cope
// with a loss that two threads see.
class XConnection {
 public:
  // An empty connection.
  XConnection() = default;

  // Connects to the display that the environment names. Empty when there is none. Any thread.
  static XConnection open();

  explicit operator bool() const { return state_ != nullptr; }

  // The display, owned by this connection; null when empty.
  Display* get() const { return state_ ? state_->display : nullptr; }

  // Whether the server has gone away; true when empty. Any thread.
  bool lost() const { return !state_ || state_->lost; }

 private:
  // Has an address of its own, which Xlib and the error handlers keep.
  struct State {
    Display* display = nullptr;
    std::atomic<bool> lost = false;
  };
  struct Closer {
    void operator()(State* state) const;
  };

  std::unique_ptr<State, Closer> state_;
};

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

// The window above `window`: `None` above a root. Nothing when the window has gone.
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
