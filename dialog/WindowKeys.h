// The keyboard of the test window.
#pragma once

#include <gtk/gtk.h>

#include <memory>

#include "dialog/Gtk.h"
#include "dialog/LoneKeys.h"

namespace quorvel {

// Decides which keys work a dialog. A scanner that types sends its keys to the window as well, and
// nothing that it types may press a button or move the selection. So keys have no effect but for
// mnemonics (Alt), Alt+F4 and Escape, which close the window, and Control+C, and these only if no
// other key comes close. GTK thread.
class WindowKeys {
 public:
  // Takes over the keys of `dialog` until this object is destroyed. Control+C calls `copy`.
  WindowKeys(GtkDialog* dialog, void (*copy)());
  ~WindowKeys();
  WindowKeys(const WindowKeys&) = delete;
  WindowKeys& operator=(const WindowKeys&) = delete;

 private:
  struct EventFree {
    void operator()(GdkEvent* event) const { gdk_event_free(event); }
  };

  static gboolean onKey(GtkWidget* dialog, GdkEventKey* event, gpointer keys);
  static gboolean onTimer(gpointer keys);
  void addAccelerator(guint key, GdkModifierType modifiers, GCallback callback);
  void takeKey(const GdkEventKey& event);
  void actIfAlone();
  void stopTimer();

  const GObjectPtr<GtkWindow> window_;
  const GObjectPtr<GtkAccelGroup> accelerators_;
  void (*const copy_)();
  LoneKeys loneKeys_;
  std::unique_ptr<GdkEvent, EventFree> press_;  // waits for a pause to follow
  guint timer_ = 0;                             // 0 while no press waits
};

}  // namespace quorvel
