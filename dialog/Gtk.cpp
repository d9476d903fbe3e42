#include "dialog/Gtk.h"

#include "devices/XConnection.h"

namespace quorvel {

bool prepareGtk() {
  // GTK opens a display of its own, which must not be the first that Xlib sees.
  installXErrorHandlers();
  static bool localeLeftAlone = false;
  // Where GTK already runs, this would come too late, and earn a warning.
  if (!localeLeftAlone && !gdk_display_get_default()) gtk_disable_setlocale();
  localeLeftAlone = true;
  const bool prepared = gtk_init_check(nullptr, nullptr);
  // GTK puts handlers of its own on top, and they end the process.
  installXErrorHandlers();
  return prepared;
}

}  // namespace quorvel
