#include "devices/FocusTracker.h"

#include <X11/extensions/XInput2.h>
#include <unistd.h>

#include <algorithm>

#include "devices/KeyboardList.h"

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
  } else if (!answer_) {
    answer_ = ancestorsBelongToAnotherProcess();
  }
  return answer_.value();
}

void FocusTracker::handle(const XEvent& event) {
  if (event.type == PropertyNotify) {
    if (event.xproperty.atom == processId_) handle(event.xproperty);
    return;
  }
  cached_ = false;
  if (event.type == GenericEvent && event.xcookie.evtype == XI_HierarchyChanged) {
    hasOneMaster_.reset();
  }
}

// The windows stay as they are, so that only this one has to be asked again, however many there are
// and however often another client changes them. One without a process needs no question.
void FocusTracker::handle(const XPropertyEvent& change) {
  const auto changed = std::ranges::find(ancestors_, change.window, &Ancestor::window);
  if (changed == ancestors_.end()) return;
  changed->process.reset();
  if (change.state == PropertyDelete) changed->process = {.windowExists = true, .value = {}};
  answer_.reset();
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
  return ancestorsBelongToAnotherProcess();
}

Window FocusTracker::focusWindow() const {
  Window focus = None;
  int revertTo = 0;
  connection_.call([&](Display* display) { XGetInputFocus(display, &focus, &revertTo); });
  return focus == PointerRoot ? None : focus;
}

bool FocusTracker::ancestorsBelongToAnotherProcess() {
  for (std::size_t i = 0; i < ancestors_.size() || climb(); ++i) {
    Ancestor& ancestor = ancestors_[i];
    if (!ancestor.process) {
      ancestor.process = readCardinal(connection_, ancestor.window, processId_);
    }
    if (ancestor.process->value) return static_cast<pid_t>(*ancestor.process->value) != getpid();
    if (!ancestor.process->windowExists) {
      cached_ = false;
      break;
    }
  }
  return false;
}

bool FocusTracker::climb() {
  const auto parent = parentOf(connection_, ancestors_.empty() ? focus_ : ancestors_.back().window);
  if (!parent) cached_ = false;
  if (!parent || *parent == None) return false;
  ancestors_.push_back({.window = *parent, .process = {}});
  connection_.call([&](Display* display) { XSelectInput(display, *parent, PropertyChangeMask); });
  return true;
}

void FocusTracker::watchFocus(Window window) {
  selectFocusEvents(connection_, window, true);
  focus_ = window;
}

void FocusTracker::unwatch() {
  if (focus_ != None) selectFocusEvents(connection_, focus_, false);
  focus_ = None;
  for (const Ancestor& ancestor : ancestors_) {
    connection_.call(
        [&](Display* display) { XSelectInput(display, ancestor.window, NoEventMask); });
  }
  ancestors_.clear();
  answer_.reset();
}

}  // namespace quorvel
