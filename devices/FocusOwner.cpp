#include "devices/FocusOwner.h"

#include <X11/extensions/XInput2.h>
#include <unistd.h>

namespace quorvel {

// The atom is made where nobody has made it yet: a window may get the property at any time.
FocusOwner::FocusOwner(const XConnection& connection)
    : connection_(connection), processId_(XInternAtom(connection.get(), "_NET_WM_PID", False)) {}

bool FocusOwner::isAnotherProcess() {
  if (!known_) {
    forget();
    isAnother_ = ask();
  }
  return isAnother_;
}

void FocusOwner::notice(const XEvent& event) {
  const bool unrelated = event.type == PropertyNotify && event.xproperty.atom != processId_;
  if (!unrelated) known_ = false;
}

// Everything is first watched and then asked, so that no change falls in between. That a window on
// the path moves elsewhere need not be watched: the server hides it first, which takes the focus.
bool FocusOwner::ask() {
  const Window focus = focusWindow();
  watchFocus(focus == None ? DefaultRootWindow(connection_.get()) : focus);
  known_ = focusWindow() == focus;
  return focus != None && isAnotherAbove(focus);
}

Window FocusOwner::focusWindow() const {
  Window focus = None;
  int revertTo = 0;
  XGetInputFocus(connection_.get(), &focus, &revertTo);
  return focus == PointerRoot ? None : focus;
}

bool FocusOwner::isAnotherAbove(Window window) {
  std::optional<Window> parent;
  while ((parent = parentOf(connection_, window))) {
    if (*parent == None) return false;
    watchProcess(*parent);
    const CardinalProperty process = readCardinal(connection_, *parent, processId_);
    if (!process.windowExists) break;
    if (process.value) return static_cast<pid_t>(*process.value) != getpid();
    window = *parent;
  }
  known_ = false;
  return false;
}

void FocusOwner::watchProcess(Window window) {
  XSelectInput(connection_.get(), window, PropertyChangeMask);
  path_.push_back(window);
}

void FocusOwner::watchFocus(Window window) {
  unsigned char bits[] = {0, 0};
  XISetMask(bits, XI_FocusIn);
  XISetMask(bits, XI_FocusOut);
  XIEventMask mask{.deviceid = XIAllMasterDevices, .mask_len = sizeof(bits), .mask = bits};
  XISelectEvents(connection_.get(), window, &mask, 1);
  focus_ = window;
}

void FocusOwner::forget() {
  unsigned char none[] = {0};
  XIEventMask mask{.deviceid = XIAllMasterDevices, .mask_len = sizeof(none), .mask = none};
  if (focus_ != None) XISelectEvents(connection_.get(), focus_, &mask, 1);
  focus_ = None;
  for (const Window window : path_) XSelectInput(connection_.get(), window, NoEventMask);
  path_.clear();
}

}  // namespace quorvel
