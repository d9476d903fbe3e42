// How the device test window shows long names and unusual characters, through the built library.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tests/rig/OwnProcess.h"
#include "tests/rig/TestWindow.h"
#include "tests/rig/XServer.h"

// After GoogleTest, whose names are macros in X.
#include <X11/extensions/XTest.h>
#include <gdk/gdkx.h>

namespace {

using rig::TestWindow;

constexpr const char* kLongName = "Example Corporation Handheld Imaging Scanner, Gen 2";

GtkTreeViewColumn* sources(const TestWindow& window) {
  return gtk_tree_view_get_column(window.list(), 0);
}
GtkTreeViewColumn* data(const TestWindow& window) {
  return gtk_tree_view_get_column(window.list(), 1);
}

// The renderer of a column, ready to draw the given row.
GtkCellRenderer* cellOf(const TestWindow& window, GtkTreeViewColumn* column, int row) {
  GtkTreeModel* const model = gtk_tree_view_get_model(window.list());
  GtkTreeIter at;
  EXPECT_TRUE(gtk_tree_model_iter_nth_child(model, &at, nullptr, row));
  gtk_tree_view_column_cell_set_cell_data(column, model, &at, FALSE, FALSE);
  GList* const cells = gtk_cell_layout_get_cells(GTK_CELL_LAYOUT(column));
  auto* const cell = GTK_CELL_RENDERER(cells->data);
  g_list_free(cells);
  return cell;
}

// Of the whole text.
int naturalWidth(const TestWindow& window, GtkTreeViewColumn* column, int row) {
  GtkCellRenderer* const cell = cellOf(window, column, row);
  g_object_set(cell, "ellipsize", PANGO_ELLIPSIZE_NONE, "width", -1, nullptr);
  int width = 0;
  gtk_cell_renderer_get_size(cell, GTK_WIDGET(window.list()), nullptr, nullptr, nullptr, &width,
                             nullptr);
  return width;
}

PangoEllipsizeMode ellipsisOf(const TestWindow& window, GtkTreeViewColumn* column) {
  PangoEllipsizeMode mode;
  g_object_get(cellOf(window, column, 0), "ellipsize", &mode, nullptr);
  return mode;
}

// The visible part of the list.
GdkRectangle shownPart(const TestWindow& window) {
  GdkRectangle shown;
  gtk_tree_view_get_visible_rect(window.list(), &shown);
  return shown;
}

void awaitLayout(const TestWindow& window) {
  window.await("drawing", [] { return !gtk_events_pending(); });
}

GdkRectangle cellArea(const TestWindow& window, GtkTreeViewColumn* column, int row) {
  GtkTreePath* const path = gtk_tree_path_new_from_indices(row, -1);
  GdkRectangle area;
  gtk_tree_view_get_cell_area(window.list(), path, column, &area);
  gtk_tree_path_free(path);
  return area;
}

// The user's mouse.
void movePointer(int x, int y) {
  XTestFakeMotionEvent(gdk_x11_get_default_xdisplay(), -1, x, y, CurrentTime);
}
void pressButton(bool isPress) {
  XTestFakeButtonEvent(gdk_x11_get_default_xdisplay(), 1, isPress, CurrentTime);
}

// The text of the tooltip that is shown; empty without a tooltip.
std::string tooltip() {
  std::string text;
  GList* const windows = gtk_window_list_toplevels();
  for (GList* at = windows; at; at = at->next) {
    GtkWidget* const window = GTK_WIDGET(at->data);
    if (!gtk_widget_get_visible(window) || !GTK_IS_WINDOW(window) || GTK_IS_DIALOG(window))
      continue;
    for (GtkWidget* const widget : rig::widgetsIn(window)) {
      if (GTK_IS_LABEL(widget)) text = gtk_label_get_text(GTK_LABEL(widget));
    }
  }
  g_list_free(windows);
  return text;
}

// The window on an X server that has a keyboard with a long name, which has sent a row.
class TestWindowColumns : public rig::WindowTest {
 protected:
  void withALongName(const std::function<void(TestWindow&)>& deeds) {
    rig::inOwnProcess([&] {
      server_ = std::make_unique<rig::XServer>(std::vector<std::string>{kLongName});
      setenv("DISPLAY", server_->display().c_str(), 1);
      rig::visitWindow([&](TestWindow& window) {
        typeScan(window);
        deeds(window);
      });
      server_.reset();
    });
  }

  void typeScan(TestWindow& window) {
    terminal::type(server_->keyboard(0), "4600051000057\r");
    window.awaitRows(window.rowCount() + 1);
    awaitLayout(window);
  }

 private:
  std::unique_ptr<rig::XServer> server_;
};

TEST_F(TestWindowColumns, LeaveMostOfTheWidthToTheData) {
  withALongName([](TestWindow& window) {
    const GdkRectangle shown = shownPart(window);
    EXPECT_LT(gtk_tree_view_column_get_width(sources(window)) * 2, shown.width);
    const GdkRectangle cell = cellArea(window, data(window), 0);
    EXPECT_LE(cell.x + naturalWidth(window, data(window), 0), shown.width);
    EXPECT_EQ(ellipsisOf(window, sources(window)), PANGO_ELLIPSIZE_END);
    EXPECT_EQ(ellipsisOf(window, data(window)), PANGO_ELLIPSIZE_NONE);
  });
}

TEST_F(TestWindowColumns, ShowALongNameInATooltip) {
  withALongName([](TestWindow& window) {
    const GdkRectangle cell = cellArea(window, sources(window), 0);
    int x = 0;
    int y = 0;
    gdk_window_get_origin(gtk_tree_view_get_bin_window(window.list()), &x, &y);
    movePointer(x + cell.x + 5, y + cell.y + 5);
    movePointer(x + cell.x + 6, y + cell.y + 6);
    window.await("the tooltip", [] { return tooltip() == std::string(kLongName) + ":"; });
  });
}

TEST_F(TestWindowColumns, KeepTheWidthThatTheUserDragsThemTo) {
  withALongName([this](TestWindow& window) {
    const int before = gtk_tree_view_column_get_width(sources(window));
    int x = 0;
    int y = 0;
    gdk_window_get_origin(gtk_widget_get_window(GTK_WIDGET(window.list())), &x, &y);
    movePointer(x + before, y + 3);
    pressButton(true);
    window.await("the mouse button", [] { return gdk_pointer_is_grabbed() != FALSE; });
    int moves = 0;
    window.await("dragging", [&] {
      movePointer(x + before + 100 + moves++ % 2, y + 3);
      return gtk_tree_view_column_get_width(sources(window)) > before;
    });
    pressButton(false);
    window.await("the mouse button", [] { return gdk_pointer_is_grabbed() == FALSE; });
    awaitLayout(window);
    const int dragged = gtk_tree_view_column_get_width(sources(window));
    typeScan(window);
    EXPECT_EQ(gtk_tree_view_column_get_width(sources(window)), dragged);
    EXPECT_NEAR(dragged, before + 100, 5);
  });
}

TEST_F(TestWindowColumns, StartAnewAfterClear) {
  terminal::SerialLine& scanner = plugIn("/dev/ttyUSB0");
  withALongName([&](TestWindow& window) {
    const int wide = gtk_tree_view_column_get_width(sources(window));
    window.click("Очистить");
    scanner.send(std::string(200, 'x') + "\r");
    window.awaitRows(1);
    awaitLayout(window);
    EXPECT_LT(gtk_tree_view_column_get_width(sources(window)), wide / 2);
    EXPECT_GT(gtk_tree_view_column_get_width(data(window)), shownPart(window).width);
    window.click("Очистить");
    scanner.send("x\r");
    window.awaitRows(1);
    awaitLayout(window);
    EXPECT_LE(gtk_tree_view_column_get_width(data(window)), shownPart(window).width);
  });
}

TEST_F(TestWindowColumns, GrowAsShortNamesNeed) {
  terminal::SerialLine& com = plugIn("/dev/ttyS0");
  inWindow([&](TestWindow& window) {
    com.send("1\r");
    window.awaitRows(1);
    awaitLayout(window);
    EXPECT_GE(gtk_tree_view_column_get_width(sources(window)),
              naturalWidth(window, sources(window), 0));
  });
}

// A row is always one line: no part of the data is shown below the rest of it.
TEST_F(TestWindowColumns, ShowLineSeparatorsWithinTheLine) {
  terminal::SerialLine& scanner = plugIn("/dev/ttyUSB0");
  inWindow([&](TestWindow& window) {
    scanner.send("1234567890\r");
    window.awaitRows(1);
    int row = 1;
    // Line separator, paragraph separator, next line.
    for (const std::string separator : {"\u2028", "\u2029", "\u0085"}) {
      scanner.send("12345" + separator + "67890\r");
      window.awaitRows(static_cast<std::size_t>(row) + 1);
      EXPECT_GE(naturalWidth(window, data(window), row), naturalWidth(window, data(window), 0))
          << row;
      ++row;
    }
  });
}

}  // namespace
