// Another program at the X server, played by the test.
#pragma once

#include <X11/Xlib.h>
#include <sys/types.h>

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/common/KeyTyping.h"

namespace rig {

// Every operation has taken effect at the server when it returns. One thread at a time. Throws
// std::runtime_error when the server cannot be reached or knows no such device.
class XClient {
 public:
  explicit XClient(const std::string& display);

  Display* get() const { return display_.get(); }

  // A visible window that takes keys; in `parent`, or on the root.
  Window openWindow(Window parent = None);
  void closeWindow(Window window);

  // Writes on a window that it belongs to a process.
  void setProcess(Window window, pid_t process);

  // Gives the focus to a visible window, or to PointerRoot. When the window goes, the focus falls
  // to what `revertTo` says.
  void focus(Window window, int revertTo = RevertToPointerRoot);

  // Gives the focus of one master keyboard alone to a visible window.
  void focusOf(int keyboard, Window window);

  // Takes the focus of a master keyboard for this client alone whenever it goes to `window`.
  void grabFocusOn(Window window, int keyboard);

  // Makes a pointer, and the keyboard that is paired with it, those of the client that owns
  // `window`.
  void setClientPointer(Window window, int pointer);

  // Whether some client has asked for events of this mask on the window.
  bool isWatched(Window window, long mask);

  // The next key that one of the windows got; none when there is none within the time.
  std::optional<terminal::Key> takeKey(std::chrono::milliseconds patience);

  // The number of the input device of this name, as the server has it; of several, the first.
  int device(const std::string& name);

  // The numbers of all devices of this name, in the server's order.
  std::vector<int> devices(const std::string& name);

  // Takes a keyboard for this client alone. False when somebody else has it.
  bool grab(int device);
  void ungrab(int device);

  void setEnabled(int device, bool enabled);

  // The keyboard that the server's XTEST extension adds to a master, as "NAME XTEST keyboard". It
  // types while this client lives and the master is there, and one at a time.
  terminal::VirtualKeyboard& xTestKeyboardOf(const std::string& master);

  // A second pair of pointer and keyboard, to be removed again with its devices.
  void addMaster(const std::string& name);
  void removeMaster(int keyboard);

 private:
  struct Closer {
    void operator()(Display* display) const { XCloseDisplay(display); }
  };
  std::unique_ptr<Display, Closer> display_;
  std::unique_ptr<terminal::VirtualKeyboard> xTestKeyboard_;
};

}  // namespace rig
