#include "dialog/Gtk.h"

#include <gdk/gdkx.h>

#include "devices/XErrors.h"

namespace quorvel {
namespace {

// How GTK stands in this process.
struct State {
  bool prepared = false;
  bool lost = false;
  void (*displayLost)() = nullptr;
};
State state;

// Called from the depth of some call of GTK's to the display, which must first come to its end.
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
  // GTK opens a display of its own, which must not be the first that Xlib sees.
  installXErrorHandlers();
  // The host's GTK, with the host's display, is the host's business.
  state.prepared = gdk_display_get_default() != nullptr;
  if (state.prepared) return;
  gtk_disable_setlocale();
  state.prepared = gtk_init_check(nullptr, nullptr);
  if (state.prepared) {
    adoptDisplay(gdk_x11_display_get_xdisplay(gdk_display_get_default()), noticeLoss, nullptr);
  }
  // GTK has put handlers of its own on top, and they end the process.
  installXErrorHandlers();
}

}  // namespace

bool prepareGtk(void (*displayLost)()) {
  state.displayLost = displayLost;
  if (!state.prepared) prepareOnce();
  return state.prepared && !state.lost;
}

}  // namespace quorvel
