// Whether the keyboard focus belongs to this process.
#pragma once

#include <optional>
#include <vector>

#include "devices/XConnection.h"

namespace quorvel {

// Tells whether the window with the keyboard focus belongs to another process. Asking the server
// takes several round trips, too many for every key, so the answer is cached where an event on the
// same connection would say that it may have changed. Used on one thread.
class FocusTracker {
 public:
  // `connection` is not empty, has selected hierarchy events, and outlives this object.
  explicit FocusTracker(const XConnection& connection);

  // False also where it cannot be told: no window has the focus, no window above it names a
  // process, or one of them vanishes meanwhile.
  bool belongsToAnotherProcess();

  // Takes every event of the connection that is no key.
  void handle(const XEvent& event);

 private:
  bool query();
  // Whether an event tells of every change of the focus.
  bool eventsTellOfFocus();
  // The window that has the focus; None when no single one has.
  Window focusWindow() const;
  bool ancestorsBelongToAnotherProcess(Window window);
  void watchProcess(Window window);
  void watchFocus(Window window);
  void unwatch();

  const XConnection& connection_;
  Atom processId_ = None;
  bool cached_ = false;
  bool answer_ = false;               // when cached
  Window focus_ = None;               // watched for losing the focus
  std::vector<Window> ancestors_;     // of the focus window, watched for another process
  std::optional<bool> hasOneMaster_;  // whether the server has but one master keyboard; none: ask
};

}  // namespace quorvel
