// The columns of the test window's list.
#pragma once

#include <gtk/gtk.h>

namespace quorvel {

// Adds two columns to an empty list, which show the model's columns `sources` and `data` as texts
// of `cell`. The column of sources grows with the names but leaves most of the list's width to the
// data: a name that is too long ends in an ellipsis, and the user reads the whole in a tooltip or
// after dragging the column wider. The column of data grows, and is scrolled to, without limit.
// GTK thread, as the functions below.
void addColumns(GtkTreeView* list, GtkCellRenderer* cell, gint sources, gint data);

// Makes the column of sources as wide as `source` needs, within its limit.
void makeRoomForSource(GtkTreeView* list, const char* source);

// Makes both columns as narrow as at the start, even where the user has dragged them.
void resetWidths(GtkTreeView* list);

}  // namespace quorvel
