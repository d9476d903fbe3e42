// The tools' own connection to the X server, and the input devices there.
#pragma once

#include <X11/Xlib.h>

#include <memory>
#include <string>
#include <vector>

namespace terminal {

struct XInputDevice {
  int id;
  std::string name;  // as the settings form has it
  bool isKeyboard;   // the form lists it, or Xwayland reads all keyboards through it
  bool isEnabled;
};

// A device's name as the settings form and the component's parameter have it.
std::string formNameOf(std::string name);

// Used on one thread. A connection that is lost stays lost, and answers nothing. Made before a
// component opens a keyboard, whose handlers of X errors have to come last.
class XDisplay {
 public:
  // Connects to the default display; false when there is none.
  XDisplay();
  explicit operator bool() const { return display_ && !*lost_; }

  Display* get() const { return display_.get(); }

  // Reads what the server has sent. Whether anything came that may change the devices.
  bool devicesMayHaveChanged();

  // The input devices in the server's order.
  std::vector<XInputDevice> devices();

  // Whether the server is a client of a Wayland compositor itself, and gets no other keys than
  // those that the compositor passes on.
  bool isXwayland();

 private:
  struct Closer {
    const bool* lost;
    void operator()(Display* display) const;
  };

  std::unique_ptr<bool> lost_ = std::make_unique<bool>(false);
  std::unique_ptr<Display, Closer> display_;
};

}  // namespace terminal
