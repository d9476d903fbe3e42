#include "dialog/Gtk.h"

#include <dlfcn.h>

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

bool isLoaded(const char* library) {
  void* const handle = dlopen(library, RTLD_LAZY | RTLD_NOLOAD);
  if (handle) dlclose(handle);
  return handle != nullptr;
}

// Whether the host has brought a later GTK than the driver's. Both register types of the same
// names, which ends the process, at the latest when the second one is used.
bool isBesideLaterGtk() {
  return isLoaded("libgtk-3.so.0") || isLoaded("libgtk-4.so.1") ||
         dlsym(RTLD_DEFAULT, "gtk_get_major_version");
}

// Whether the host has GTK 2 running on a display. The type has another name in later versions.
bool hostUsesGtk2() {
  return isLoaded(kGtkLibrary) && openGtk() && g_type_from_name("GdkDisplayX11") != 0;
}

// Numbers for what GTK goes on to create on a lost display, where Xlib's own allocator aborts. The
// requests themselves go nowhere. No server's numbers have this bit: GTK warns when two things have
// the same number.
XID allocateAnyId(Display*) {
  static XID last = XID{1} << 29;
  return ++last;
}

// Called inside a GTK call; notify from the main loop after it has unwound.
void noticeLoss(Display* display, void*) {
  state.lost = true;
  reinterpret_cast<_XPrivDisplay>(display)->resource_alloc = allocateAnyId;
  g_idle_add_full(
      G_PRIORITY_HIGH,
      [](gpointer) -> gboolean {
        state.displayLost();
        return G_SOURCE_REMOVE;
      },
      nullptr, nullptr);
}

// Whether gtk_init or its like has run, even if there was no display: it registers this type, which
// gdk_display_get_default does as well.
bool isGtkInitialised() { return g_type_from_name("GdkDisplayManager") != 0; }

// The event source of a connection that was lost while it was being opened. The host's main loop
// must not come to use it.
void removeEventSource(guint id) {
  GSource* const source = g_main_context_find_source_by_id(nullptr, id);
  const char* const name = source ? g_source_get_name(source) : nullptr;
  if (name && g_str_has_prefix(name, "GDK X11 Event source")) g_source_remove(id);
}

guint nextSourceId() {
  const guint id = g_idle_add([](gpointer) -> gboolean { return G_SOURCE_REMOVE; }, nullptr);
  g_source_remove(id);
  return id;
}

// What gtk_init_check does, in two steps: the first one installs error handlers that exit and talks
// to no server, the second one opens the display.
void openDisplay() {
  gtk_parse_args(nullptr, nullptr);
  installXErrorHandlers();
  const guint firstId = nextSourceId();
  GdkDisplay* display = nullptr;
  state.lost = !guardXCall([&] { display = gdk_display_open_default_libgtk_only(); });
  if (state.lost) {
    const guint lastId = nextSourceId();
    for (guint id = firstId; id != lastId; ++id) removeEventSource(id);
    return;
  }
  state.prepared = display != nullptr;
  if (display) adoptDisplay(gdk_x11_display_get_xdisplay(display), noticeLoss, nullptr);
}

void prepareOnce() {
  // XInitThreads must precede the first display, which may be the one that GTK is about to open.
  installXErrorHandlers();
  // GTK warns about this call when it comes too late.
  if (!isGtkInitialised()) gtk_disable_setlocale();
  // A display that the host opened keeps the host's error handling.
  state.prepared = gdk_display_get_default() != nullptr;
  if (!state.prepared) openDisplay();
  installXErrorHandlers();
}

}  // namespace

bool prepareGtk(void (*displayLost)()) {
  state.displayLost = displayLost;
  if (!state.prepared && !state.lost) {
    if (isBesideLaterGtk() ? !hostUsesGtk2() : !openGtk()) return false;
    prepareOnce();
  }
  return state.prepared && !state.lost;
}

}  // namespace quorvel
