#include "devices/FocusTracker.h"

#include <X11/extensions/XInput2.h>
#include <unistd.h>

#include "devices/KeyboardList.h"
#include "devices/XQueries.h"

namespace quorvel {
namespace {

void selectFocusEvents(const XConnection& connection, Window window, bool wanted) {
  unsigned char bits[XIMaskLen(XI_FocusOut)] = {};
  if (wanted) {
    XISetMask(bits, XI_FocusIn);
    XISetMask(bits, XI_FocusOut);
  }
  XIEventMask mask{.deviceid = XIAllMasterDevices, .mask_len = sizeof(bits), .mask = bits};
  connection.call([&](Display* display) { XISelectEvents(display, window, &mask, 1); });
}

}  // namespace

// Creates the atom where it does not exist yet: a window may get the property at any time.
FocusTracker::FocusTracker(const XConnection& connection) : connection_(connection) {
  connection_.call(
      [this](Display* display) { processId_ = XInternAtom(display, "_NET_WM_PID", False); });
}

bool FocusTracker::belongsToAnotherProcess() {
  if (cached_ && !eventsTellOfFocus()) cached_ = focusWindow() == focus_;
  if (!cached_) {
    unwatch();
    answer_ = query();
  }
  return answer_;
}

void FocusTracker::handle(const XEvent& event) {
  const bool unrelated = event.type == PropertyNotify && event.xproperty.atom != processId_;
  if (!unrelated) cached_ = false;
  if (event.type == GenericEvent && event.xcookie.evtype == XI_HierarchyChanged) {
    hasOneMaster_.reset();
  }
}

// Each master keyboard has a focus of its own. Which of them counts for this client, another client
// may change without any event.
bool FocusTracker::eventsTellOfFocus() {
  if (!hasOneMaster_) hasOneMaster_ = countMasterKeyboards(connection_) == 1;
  return *hasOneMaster_;
}

// Selects events before querying, or a change in between is missed. Reparenting needs no event of
// its own: the server unmaps the window first, which takes the focus from it.
bool FocusTracker::query() {
  const Window focus = focusWindow();
  // Not cached: no event tells when the focus goes to a window on which a client has a passive grab
  // of the focus, unless another window loses it.
  if (focus == None) return false;
  watchFocus(focus);
  cached_ = focusWindow() == focus;
  return ancestorsBelongToAnotherProcess(focus);
}

Window FocusTracker::focusWindow() const {
  Window focus = None;
  int revertTo = 0;
  connection_.call([&](Display* display) { XGetInputFocus(display, &focus, &revertTo); });
  return focus == PointerRoot ? None : focus;
}

bool FocusTracker::ancestorsBelongToAnotherProcess(Window window) {
  std::optional<Window> parent;
  while ((parent = parentOf(connection_, window))) {
    if (*parent == None) return false;
    watchProcess(*parent);
    const CardinalProperty process = readCardinal(connection_, *parent, processId_);
    if (!process.windowExists) break;
    if (process.value) return static_cast<pid_t>(*process.value) != getpid();
    window = *parent;
  }
  cached_ = false;
  return false;
}

void FocusTracker::watchProcess(Window window) {
  connection_.call([=](Display* display) { XSelectInput(display, window, PropertyChangeMask); });
  ancestors_.push_back(window);
}

void FocusTracker::watchFocus(Window window) {
  selectFocusEvents(connection_, window, true);
  focus_ = window;
}

void FocusTracker::unwatch() {
  if (focus_ != None) selectFocusEvents(connection_, focus_, false);
  focus_ = None;
  for (const Window window : ancestors_) {
    connection_.call([=](Display* display) { XSelectInput(display, window, NoEventMask); });
  }
  ancestors_.clear();
}

}  // namespace quorvel
