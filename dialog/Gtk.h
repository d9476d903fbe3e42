// GTK, prepared for a host that may or may not use it, and owning types for what it hands out.
#pragma once

#include <gtk/gtk.h>

#include <memory>

namespace quorvel {

struct GObjectUnref {
  void operator()(void* object) const { g_object_unref(object); }
};
struct GFree {
  void operator()(void* memory) const { g_free(memory); }
};
struct TreePathFree {
  void operator()(GtkTreePath* path) const { gtk_tree_path_free(path); }
};

// One reference to an object.
template <typename T>
using GObjectPtr = std::unique_ptr<T, GObjectUnref>;

// Memory that GLib allocated: a text from a list.
template <typename T>
using GOwned = std::unique_ptr<T, GFree>;

using TreePath = std::unique_ptr<GtkTreePath, TreePathFree>;

// A reference to a widget that is kept even when GTK destroys the widget. GTK thread.
inline GObjectPtr<GtkWidget> keep(GtkWidget* widget) {
  return GObjectPtr<GtkWidget>(static_cast<GtkWidget*>(g_object_ref_sink(widget)));
}

// Whether windows can be shown on the display that the environment names. The first call makes GTK
// ready, unless the host has, and leaves the locale of the process as it is. Where it was the
// driver that made GTK ready, the end of the X server is not the end of the process: windows cannot
// be shown from then on, and the main loop calls `displayLost`. GTK thread.
bool prepareGtk(void (*displayLost)());

}  // namespace quorvel
