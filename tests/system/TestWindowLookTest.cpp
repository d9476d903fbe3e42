// The widgets of the device test window, through the built library.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "tests/rig/Driver.h"
#include "tests/rig/OwnProcess.h"
#include "tests/rig/SharedXServer.h"
#include "tests/rig/TestWindow.h"
#include "tools/common/SerialLine.h"

namespace {

using rig::TestWindow;
using terminal::SerialLine;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAreArray;

struct Packing {
  gboolean expand;
  gboolean fill;
  guint padding;
  bool operator==(const Packing&) const = default;
};

constexpr Packing kFilling = {TRUE, TRUE, 5};
constexpr Packing kFixed = {FALSE, FALSE, 5};

Packing packingOf(GtkWidget* child) {
  Packing packing;
  GtkPackType end;
  gtk_box_query_child_packing(GTK_BOX(gtk_widget_get_parent(child)), child, &packing.expand,
                              &packing.fill, &packing.padding, &end);
  EXPECT_EQ(end, GTK_PACK_START);
  return packing;
}

std::vector<GtkWidget*> childrenOf(GtkWidget* container) {
  GList* const list = gtk_container_get_children(GTK_CONTAINER(container));
  std::vector<GtkWidget*> children;
  for (GList* at = list; at; at = at->next) children.push_back(GTK_WIDGET(at->data));
  g_list_free(list);
  return children;
}

using Size = std::pair<int, int>;

Size sizeRequestOf(GtkWidget* widget) {
  Size size;
  gtk_widget_get_size_request(widget, &size.first, &size.second);
  return size;
}

void expectPlainBox(GtkWidget* box, GType type) {
  EXPECT_EQ(G_OBJECT_TYPE(box), type);
  EXPECT_FALSE(gtk_box_get_homogeneous(GTK_BOX(box)));
  EXPECT_EQ(gtk_box_get_spacing(GTK_BOX(box)), 0);
}

struct Texts {
  std::string title;
  std::vector<std::string> buttons;
};

void expectButtons(GtkWidget* box, const Texts& texts) {
  expectPlainBox(box, GTK_TYPE_VBOX);
  EXPECT_EQ(packingOf(box), kFixed);
  std::vector<std::string> labels;
  for (GtkWidget* const button : childrenOf(box)) {
    EXPECT_EQ(packingOf(button), kFixed);
    labels.emplace_back(gtk_button_get_label(GTK_BUTTON(button)));
  }
  EXPECT_EQ(labels, texts.buttons);
}

void expectScrolledList(GtkWidget* scrolled, const TestWindow& window) {
  ASSERT_TRUE(GTK_IS_SCROLLED_WINDOW(scrolled));
  EXPECT_EQ(packingOf(scrolled), kFilling);
  EXPECT_EQ(sizeRequestOf(scrolled), Size(500, 350));
  GtkPolicyType across;
  GtkPolicyType down;
  gtk_scrolled_window_get_policy(GTK_SCROLLED_WINDOW(scrolled), &across, &down);
  EXPECT_EQ(across, GTK_POLICY_AUTOMATIC);
  EXPECT_EQ(down, GTK_POLICY_AUTOMATIC);
  EXPECT_THAT(childrenOf(scrolled), ElementsAre(GTK_WIDGET(window.list())));
}

// The only text renderer of a column, which shows the given column of the first row.
GtkCellRenderer* expectTextColumn(const TestWindow& window, int number) {
  GtkTreeViewColumn* const column = gtk_tree_view_get_column(window.list(), number);
  EXPECT_STREQ(gtk_tree_view_column_get_title(column), "");
  GList* const cells = gtk_cell_layout_get_cells(GTK_CELL_LAYOUT(column));
  EXPECT_EQ(g_list_length(cells), 1u);
  auto* const cell = GTK_CELL_RENDERER(cells->data);
  g_list_free(cells);
  EXPECT_TRUE(GTK_IS_CELL_RENDERER_TEXT(cell));
  GtkTreeModel* const model = gtk_tree_view_get_model(window.list());
  GtkTreeIter first;
  EXPECT_TRUE(gtk_tree_model_get_iter_first(model, &first));
  gtk_tree_view_column_cell_set_cell_data(column, model, &first, FALSE, FALSE);
  gchar* shown = nullptr;
  g_object_get(cell, "text", &shown, nullptr);
  EXPECT_EQ(shown, number == 0 ? "COM1:" : window.rows().front().data);
  g_free(shown);
  return cell;
}

void expectList(const TestWindow& window) {
  GtkTreeModel* const model = gtk_tree_view_get_model(window.list());
  ASSERT_TRUE(GTK_IS_LIST_STORE(model));
  ASSERT_EQ(gtk_tree_model_get_n_columns(model), 2);
  for (const int column : {0, 1}) {
    EXPECT_EQ(gtk_tree_model_get_column_type(model, column), G_TYPE_STRING);
  }
  EXPECT_EQ(gtk_tree_selection_get_mode(gtk_tree_view_get_selection(window.list())),
            GTK_SELECTION_SINGLE);
  GtkCellRenderer* const cell = expectTextColumn(window, 0);
  EXPECT_EQ(expectTextColumn(window, 1), cell);
  EXPECT_EQ(gtk_tree_view_get_column(window.list(), 2), nullptr);
  int width;
  int height;
  gtk_cell_renderer_get_fixed_size(cell, &width, &height);
  EXPECT_EQ(width, -1);
  EXPECT_EQ(height, 25);
}

std::vector<std::string> labelsOf(const TestWindow& window) {
  std::vector<std::string> labels;
  for (GtkWidget* const label : window.widgets(GTK_TYPE_LABEL)) {
    labels.emplace_back(gtk_label_get_text(GTK_LABEL(label)));
  }
  return labels;
}

void expectLook(const TestWindow& window, const Texts& texts) {
  GtkWidget* const dialog = GTK_WIDGET(window.dialog());
  EXPECT_EQ(gtk_window_get_title(GTK_WINDOW(dialog)), texts.title);
  EXPECT_EQ(sizeRequestOf(dialog), Size(600, 400));
  EXPECT_TRUE(gtk_window_get_modal(GTK_WINDOW(dialog)));
  GtkWidget* const content = gtk_dialog_get_content_area(window.dialog());
  GtkWidget* const across = childrenOf(content).front();
  expectPlainBox(across, GTK_TYPE_HBOX);
  EXPECT_EQ(childrenOf(across).size(), 2u);
  expectScrolledList(childrenOf(across)[0], window);
  expectButtons(childrenOf(across)[1], texts);
  expectList(window);
  // No timeout is shown: the only labels are those of the buttons and of the two columns.
  EXPECT_THAT(window.widgets(GTK_TYPE_ENTRY), IsEmpty());
  std::vector<std::string> labels = {"", ""};
  labels.insert(labels.end(), texts.buttons.begin(), texts.buttons.end());
  EXPECT_THAT(labelsOf(window), UnorderedElementsAreArray(labels));
}

class TestWindowLook : public rig::WindowTest {
 protected:
  // Shows the window of a library with one row in it.
  void expectLookOf(const std::string& library, const Texts& texts) {
    SerialLine& scanner = plugIn("/dev/ttyS0");
    rig::inOwnProcess([&] {
      rig::Driver driver(u"InputDevice", library);
      rig::visitWindow(driver.component, [&](TestWindow& window) {
        scanner.send("123\r");
        window.awaitRows(1);
        expectLook(window, texts);
      });
    });
  }
};

TEST_F(TestWindowLook, HasItsWidgetsInRussian) {
  expectLookOf(rig::libraryPath(), {"Тест устройства", {"Закрыть", "Очистить", "Копировать"}});
}

TEST_F(TestWindowLook, HasItsWidgetsInEnglish) {
  expectLookOf(rig::englishLibraryPath(), {"Device test", {"Close", "Clear", "Copy"}});
}

}  // namespace
