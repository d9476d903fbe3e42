// A library with none of the product's hardening, a fifth name, and a need for GTK.
#include <gtk/gtk.h>

extern "C" __attribute__((visibility("default"))) guint Talk() { return gtk_main_level(); }
