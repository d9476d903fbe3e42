// Whether the keyboard focus belongs to this process.
#pragma once

#include <vector>

#include "devices/XConnection.h"

namespace quorvel {

// Tells whether the window with the keyboard focus belongs to another process. Asking the server
// takes several round trips, too many for every key, so the answer is cached until an event on the
// same connection says that it may have changed. Used on one thread.
class FocusTracker {
 public:
  // `connection` is not empty and outlives this object.
  explicit FocusTracker(const XConnection& connection);

  // False also where it cannot be told: no window has the focus, no window above it names a
  // process, or one of them vanishes meanwhile.
  bool belongsToAnotherProcess();

  // Takes every event of the connection that is no key.
  void handle(const XEvent& event);

 private:
  bool query();
  // The window that has the focus; None when no single one has.
  Window focusWindow() const;
  bool ancestorsBelongToAnotherProcess(Window window);
  void watchProcess(Window window);
  void watchFocus(Window window);
  void unwatch();

  const XConnection& connection_;
  Atom processId_ = None;
  bool cached_ = false;
  bool answer_ = false;            // when cached
  Window focus_ = None;            // watched for focus changes; a root when no window has the focus
  std::vector<Window> ancestors_;  // of the focus window, watched for another process
};

}  // namespace quorvel
