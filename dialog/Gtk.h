// Preparing GTK in a host that may or may not use it, and owning types for GTK's objects.
#pragma once

#include <memory>

#include "dialog/GtkFunctions.h"

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

// Memory allocated by GLib.
template <typename T>
using GOwned = std::unique_ptr<T, GFree>;

using TreePath = std::unique_ptr<GtkTreePath, TreePathFree>;

// A reference that keeps an object's memory valid even after GTK has destroyed the object. GTK
// thread.
template <typename T>
GObjectPtr<T> keep(T* object) {
  return GObjectPtr<T>(static_cast<T*>(g_object_ref_sink(object)));
}

// Opens GTK and initialises it, unless the host has done so; returns whether windows can be shown
// on the default display. They cannot where GTK 2 is not installed, nor in a host that has loaded a
// later GTK, unless that host shows windows with GTK 2 as well. Leaves the locale of the process
// alone. If the driver initialised GTK, the process survives the end of the X server: the main loop
// then calls `displayLost`, and from then on this returns false. GTK thread.
bool prepareGtk(void (*displayLost)());

}  // namespace quorvel
