// Whether the keyboard focus belongs to this process.
#pragma once

#include <optional>
#include <vector>

#include "devices/XConnection.h"
#include "devices/XQueries.h"

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
  // A window above the one with the focus.
  struct Ancestor {
    Window window;
    std::optional<CardinalProperty> process;  // none: ask
  };

  bool query();
  // Whether an event tells of every change of the focus.
  bool eventsTellOfFocus();
  // The window that has the focus; None when no single one has.
  Window focusWindow() const;
  bool ancestorsBelongToAnotherProcess();
  // Adds the next window above; false when there is none, or it cannot be told.
  bool climb();
  void handle(const XPropertyEvent& change);
  void watchFocus(Window window);
  void unwatch();

  const XConnection& connection_;
  Atom processId_ = None;
  bool cached_ = false;
  std::optional<bool> answer_;        // when cached; none: ask the ancestors
  Window focus_ = None;               // watched for losing the focus
  std::vector<Ancestor> ancestors_;   // of the focus window, watched for another process
  std::optional<bool> hasOneMaster_;  // whether the server has but one master keyboard; none: ask
};

}  // namespace quorvel
