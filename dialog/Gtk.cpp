#include "dialog/Gtk.h"

#include <gdk/gdkx.h>

#include "devices/XErrors.h"

namespace quorvel {
namespace {

// GTK's state in this process.
struct State {
  bool prepared = false;
  bool lost = false;
  void (*displayLost)() = nullptr;
};
State state;

// Called inside a GTK call; notify from the main loop after it has unwound.
void noticeLoss(Display*, void*) {
  state.lost = true;
  g_idle_add_full(
      G_PRIORITY_HIGH,
      [](gpointer) -> gboolean {
        state.displayLost();
        return G_SOURCE_REMOVE;
      },
      nullptr, nullptr);
}

void prepareOnce() {
  // XInitThreads must precede the first display, which may be the one that GTK is about to open.
  installXErrorHandlers();
  // A display that the host opened keeps the host's error handling.
  state.prepared = gdk_display_get_default() != nullptr;
  if (state.prepared) return;
  gtk_disable_setlocale();
  state.prepared = gtk_init_check(nullptr, nullptr);
  if (state.prepared) {
    adoptDisplay(gdk_x11_display_get_xdisplay(gdk_display_get_default()), noticeLoss, nullptr);
  }
  // GTK has installed handlers that exit; put the driver's back on top.
  installXErrorHandlers();
}

}  // namespace

bool prepareGtk(void (*displayLost)()) {
  state.displayLost = displayLost;
  if (!state.prepared) prepareOnce();
  return state.prepared && !state.lost;
}

}  // namespace quorvel
