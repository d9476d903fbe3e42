// Whether the keyboard focus is this process's.
#pragma once

#include <vector>

#include "devices/XConnection.h"

namespace quorvel {

// Knows whether the window with the keyboard focus is one of another process. To ask the server
// takes several round trips, too many for every key. So the answer is kept until the server tells,
// on the same connection and in the order in which things happen, that it may have become another.
// Used on one thread.
class FocusOwner {
 public:
  // `connection` is not empty and outlives this object.
  explicit FocusOwner(const XConnection& connection);

  // False where it cannot be told: no window has the focus, those above it name no process, or one
  // of them vanishes meanwhile.
  bool isAnotherProcess();

  // To be given every event of the connection that is no key.
  void notice(const XEvent& event);

 private:
  bool ask();
  // The window that has the focus; None when no single one has.
  Window focusWindow() const;
  bool isAnotherAbove(Window window);
  void watchProcess(Window window);
  void watchFocus(Window window);
  void forget();

  const XConnection& connection_;
  const Atom processId_;
  bool known_ = false;
  bool isAnother_ = false;    // the answer, when known
  Window focus_ = None;       // watched for losing the focus; a root when no window has it
  std::vector<Window> path_;  // the windows above it that were asked, watched for a new process
};

}  // namespace quorvel
