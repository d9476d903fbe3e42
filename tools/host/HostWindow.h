// A window of the terminal host's own, as every real host has one.
#pragma once

#include <string>

#include "tools/host/XDisplay.h"

namespace terminal {

// While it has the focus, the component takes the keys of a scanner that types, whatever program
// the terminal belongs to. Used on one thread, and made before a component opens a keyboard.
class HostWindow {
 public:
  // Throws std::runtime_error when there is no display.
  explicit HostWindow(const std::string& title);

  // Whether its user has closed it, or the display has gone.
  bool isClosed();

  // Shows a text in the place of the title.
  void show(const std::string& text);

 private:
  XDisplay display_;
  Window window_ = None;
  Atom deleteWindow_ = None;
  bool isClosed_ = false;
};

}  // namespace terminal
