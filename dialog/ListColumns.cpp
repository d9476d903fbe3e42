#include "dialog/ListColumns.h"

#include <algorithm>
#include <set>
#include <string>

#include "dialog/Gtk.h"

namespace quorvel {
namespace {

constexpr gint kPosition = 0;

// In pixels. The list is never narrower than 480, so most of it is left to the data.
constexpr gint kNarrowest = 70;
constexpr gint kWidest = 200;

// For which there is room already: measuring a text takes as long as all else that a row costs. Of
// the window that is open; used on the main thread only.
std::set<std::string>& fittingSources() {
  static auto& sources = *new std::set<std::string>;
  return sources;
}

GtkTreeViewColumn* columnOf(GtkTreeView* list) { return gtk_tree_view_get_column(list, kPosition); }

// The columns share a renderer. A text that may be shortened asks for no width, which its column
// would not heed: GTK would measure the font for each of them, and that takes as long as two texts.
void shortenText(GtkTreeViewColumn*, GtkCellRenderer* cell, GtkTreeModel*, GtkTreeIter*, gpointer) {
  g_object_set(cell, "ellipsize", PANGO_ELLIPSIZE_END, "width", 0, nullptr);
}

void showWholeText(GtkTreeViewColumn*, GtkCellRenderer* cell, GtkTreeModel*, GtkTreeIter*,
                   gpointer) {
  g_object_set(cell, "ellipsize", PANGO_ELLIPSIZE_NONE, "width", -1, nullptr);
}

// The width that the column needs to show all of `source`.
gint widthFor(GtkTreeView* list, const char* source) {
  GList* const cells = gtk_cell_layout_get_cells(GTK_CELL_LAYOUT(columnOf(list)));
  auto* const cell = static_cast<GtkCellRenderer*>(cells->data);
  g_list_free(cells);
  g_object_set(cell, "text", source, "ellipsize", PANGO_ELLIPSIZE_NONE, "width", -1, nullptr);
  gint width = 0;
  gtk_cell_renderer_get_size(cell, GTK_WIDGET(list), nullptr, nullptr, nullptr, &width, nullptr);
  gint separator = 0;
  gint focusLine = 0;
  gtk_widget_style_get(GTK_WIDGET(list), "horizontal-separator", &separator, "focus-line-width",
                       &focusLine, nullptr);
  return width + separator + 2 * focusLine;
}

gboolean showWholeSource(GtkWidget* widget, gint x, gint y, gboolean byKeyboard,
                         GtkTooltip* tooltip, gpointer modelColumn) {
  GtkTreeView* const list = GTK_TREE_VIEW(widget);
  GtkTreeModel* model = nullptr;
  GtkTreePath* path = nullptr;
  GtkTreeIter row;
  if (!gtk_tree_view_get_tooltip_context(list, &x, &y, byKeyboard, &model, &path, &row)) {
    return FALSE;
  }
  const TreePath ownedPath(path);
  GtkTreeViewColumn* column = nullptr;
  gtk_tree_view_get_path_at_pos(list, x, y, nullptr, &column, nullptr, nullptr);
  if (column != columnOf(list)) return FALSE;
  gchar* source = nullptr;
  gtk_tree_model_get(model, &row, GPOINTER_TO_INT(modelColumn), &source, -1);
  const GOwned<gchar> owned(source);
  gtk_tooltip_set_text(tooltip, source);
  gtk_tree_view_set_tooltip_cell(list, tooltip, path, column, nullptr);
  return TRUE;
}

GtkTreeViewColumn* addColumn(GtkTreeView* list, GtkCellRenderer* cell, gint modelColumn,
                             GtkTreeCellDataFunc prepare) {
  GtkTreeViewColumn* const column =
      gtk_tree_view_column_new_with_attributes("", cell, "text", modelColumn, nullptr);
  gtk_tree_view_column_set_cell_data_func(column, cell, prepare, nullptr, nullptr);
  gtk_tree_view_append_column(list, column);
  return column;
}

}  // namespace

void addColumns(GtkTreeView* list, GtkCellRenderer* cell, gint sources, gint data) {
  fittingSources().clear();
  GtkTreeViewColumn* const column = addColumn(list, cell, sources, shortenText);
  gtk_tree_view_column_set_sizing(column, GTK_TREE_VIEW_COLUMN_FIXED);
  gtk_tree_view_column_set_fixed_width(column, kNarrowest);
  gtk_tree_view_column_set_resizable(column, TRUE);
  addColumn(list, cell, data, showWholeText);
  gtk_widget_set_has_tooltip(GTK_WIDGET(list), TRUE);
  g_signal_connect(list, "query-tooltip", G_CALLBACK(showWholeSource), GINT_TO_POINTER(sources));
}

void makeRoomForSource(GtkTreeView* list, const char* source) {
  if (!fittingSources().insert(source).second) return;
  GtkTreeViewColumn* const column = columnOf(list);
  const gint width = std::min(widthFor(list, source), kWidest);
  if (width > gtk_tree_view_column_get_fixed_width(column)) {
    gtk_tree_view_column_set_fixed_width(column, width);
  }
}

void resetWidths(GtkTreeView* list) {
  fittingSources().clear();
  gtk_tree_view_column_set_fixed_width(columnOf(list), kNarrowest);
  gtk_tree_view_columns_autosize(list);
}

}  // namespace quorvel
