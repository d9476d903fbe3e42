// A test in the role of another X client.
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

// Every operation has taken effect at the server when it returns. Not thread-safe. Throws
// std::runtime_error when the server cannot be reached or has no such device.
class XClient {
 public:
  explicit XClient(const std::string& display);

  Display* get() const { return display_.get(); }

  // A visible window that receives keys, a child of `parent` or of the root.
  Window openWindow(Window parent = None);
  void closeWindow(Window window);

  // Sets or deletes the _NET_WM_PID property.
  void setProcess(Window window, pid_t process);
  void removeProcess(Window window);

  // Gives the focus to a visible window, or to PointerRoot. `revertTo` is for when the window goes
  // away.
  void focus(Window window, int revertTo = RevertToPointerRoot);

  // Whether the window that has the focus carries this process in its _NET_WM_PID property.
  bool hasFocus(pid_t process);

  // Gives the focus of just one master keyboard to a visible window.
  void focusOf(int keyboard, Window window);

  // Grabs a master keyboard for this client whenever its focus enters `window`.
  void grabFocusOn(Window window, int keyboard);

  // Assigns a pointer, and the keyboard paired with it, to the client that owns `window`.
  void setClientPointer(Window window, int pointer);

  // Whether any client has selected events of this mask on the window.
  bool isWatched(Window window, long mask);

  // The next key pressed in one of the windows; nothing if none is within the time.
  std::optional<terminal::Key> takeKey(std::chrono::milliseconds patience);

  // The id of the input device of this name; of several, the first.
  int device(const std::string& name);

  // The ids of all devices of this name, in the server's order.
  std::vector<int> devices(const std::string& name);

  // Grabs a keyboard for this client. False when another client has it.
  bool grab(int device);
  void ungrab(int device);

  void setEnabled(int device, bool enabled);

  // The keyboard that the XTEST extension adds to a master, called "NAME XTEST keyboard". Valid
  // until the next call, and while this client and the master exist.
  terminal::VirtualKeyboard& xTestKeyboardOf(const std::string& master);

  // Adds or removes a master pointer and keyboard.
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
