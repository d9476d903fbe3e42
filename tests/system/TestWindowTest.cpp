// The device test window, through the built library: its widgets, its rows, its buttons.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <clocale>
#include <filesystem>
#include <memory>
#include <vector>

#include "tests/rig/Driver.h"
#include "tests/rig/OwnProcess.h"
#include "tests/rig/SharedXServer.h"
#include "tests/rig/TestWindow.h"
#include "tools/common/SerialLine.h"

namespace {

using rig::inOwnProcess;
using rig::Row;
using rig::scannerAt;
using rig::TestWindow;
using rig::visitWindow;
using terminal::SerialLine;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
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

// The one text renderer of a column, which shows the given column of the first row.
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

// Shows the window of a library with one row in it.
void expectLookOfLibrary(const std::string& path, const Texts& texts) {
  const auto scanner = scannerAt("/dev/ttyS0");
  terminal::ComponentLibrary library(path);
  terminal::Component component(library, u"InputDevice");
  visitWindow(component, [&](TestWindow& window) {
    scanner->send("123\r");
    window.awaitRows(1);
    expectLook(window, texts);
  });
}

TEST(TestWindow, HasTheWidgetsInRussian) {
  inOwnProcess([] {
    expectLookOfLibrary(rig::libraryPath(),
                        {"Тест устройства", {"Закрыть", "Очистить", "Копировать"}});
  });
}

TEST(TestWindow, HasTheWidgetsInEnglish) {
  inOwnProcess([] {
    const std::string name = "QuorvelEnglishLin" + std::to_string(sizeof(void*) * 8) + ".so";
    expectLookOfLibrary(std::filesystem::path(rig::libraryPath()).parent_path() / name,
                        {"Device test", {"Close", "Clear", "Copy"}});
  });
}

TEST(TestWindow, IsEmptyWhereThereIsNothingToListenTo) {
  inOwnProcess(
      [] { visitWindow([](TestWindow& window) { EXPECT_THAT(window.rows(), IsEmpty()); }); });
}

TEST(TestWindow, ListsWhatEveryPortAndKeyboardSends) {
  inOwnProcess([] {
    const auto com = scannerAt("/dev/ttyS0");
    const auto acm = scannerAt("/dev/ttyACM0");
    const auto usb = scannerAt("/dev/ttyUSB0");
    rig::XServer& server = rig::sharedXServer();
    visitWindow([&](TestWindow& window) {
      com->send("one\r");
      acm->send("two\r");
      usb->send("three\r");
      terminal::type(server.keyboard(rig::kAmpersandIndex), "four\r");
      terminal::type(server.keyboard(rig::kPlainIndex), "five\r");
      EXPECT_THAT(
          window.awaitRows(5),
          UnorderedElementsAre(Row{"COM1:", "one 'CR' "}, Row{"ACM1:", "two 'CR' "},
                               Row{"USB1:", "three 'CR' "},
                               Row{std::string(rig::kAmpersandKeyboard) + ":", "four 'CR' "},
                               Row{std::string(rig::kPlainKeyboard) + ":", "five 'CR' "}));
    });
  });
}

// The counts of the families decide, not the numbers of the files.
TEST(TestWindow, TakesPortsToBeNumberedWithoutGaps) {
  inOwnProcess([] {
    const auto first = scannerAt("/dev/ttyACM0");
    const auto third = scannerAt("/dev/ttyACM2");
    visitWindow([&](TestWindow& window) {
      third->send("never listed\r");
      first->send("listed\r");
      EXPECT_THAT(window.awaitRows(1), ElementsAre(Row{"ACM1:", "listed 'CR' "}));
    });
  });
}

TEST(TestWindow, ShowsControlCharactersByName) {
  inOwnProcess([] {
    const auto scanner = scannerAt("/dev/ttyUSB0");
    visitWindow([&](TestWindow& window) {
      scanner->send("\x02 A\tB\x1D\x7F\r");
      EXPECT_EQ(window.awaitRows(1)[0].data, " 'STX'  'SPACE' A 'TAB' B 'GS'  'DEL'  'CR' ");
    });
  });
}

TEST(TestWindow, ShowsLettersOutsideAsciiInAnyLocale) {
  for (const char* const locale : {"C", "C.UTF-8"}) {
    inOwnProcess([locale] {
      ASSERT_TRUE(std::setlocale(LC_ALL, locale));
      const auto scanner = scannerAt("/dev/ttyUSB0");
      visitWindow([&](TestWindow& window) {
        scanner->send("Привет\r");
        EXPECT_EQ(window.awaitRows(1)[0].data, "Привет 'CR' ");
      });
      EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), locale);
    });
  }
}

TEST(TestWindow, CutsALongTextAfterAWholeCharacter) {
  inOwnProcess([] {
    const auto scanner = scannerAt("/dev/ttyUSB0");
    visitWindow([&](TestWindow& window) {
      std::string scan;
      while (scan.size() < 2000) scan += "Ж";
      scanner->send(scan + "\r");
      // 1023 bytes would be 511 letters and a half.
      EXPECT_EQ(window.awaitRows(1)[0].data, scan.substr(0, 1022));
    });
  });
}

TEST(TestWindow, ScrollsToEachNewRowAndActivatesIt) {
  inOwnProcess([] {
    const auto scanner = scannerAt("/dev/ttyUSB0");
    visitWindow([&](TestWindow& window) {
      int activated = 0;
      g_signal_connect(window.list(), "row-activated",
                       G_CALLBACK(+[](GtkTreeView*, GtkTreePath*, GtkTreeViewColumn*,
                                      gpointer count) { ++*static_cast<int*>(count); }),
                       &activated);
      constexpr int kMoreThanFit = 30;
      for (int i = 1; i <= kMoreThanFit; ++i) {
        scanner->send("x\r");
        window.awaitRows(static_cast<std::size_t>(i));
      }
      window.await("the last row", [&] {
        GtkTreePath* from = nullptr;
        GtkTreePath* to = nullptr;
        if (!gtk_tree_view_get_visible_range(window.list(), &from, &to)) return false;
        const int last = gtk_tree_path_get_indices(to)[0];
        gtk_tree_path_free(from);
        gtk_tree_path_free(to);
        return last == kMoreThanFit - 1;
      });
      EXPECT_EQ(activated, kMoreThanFit);
    });
  });
}

TEST(TestWindow, GoesOnListeningAfterClear) {
  inOwnProcess([] {
    const auto scanner = scannerAt("/dev/ttyUSB0");
    visitWindow([&](TestWindow& window) {
      scanner->send("before\r");
      window.awaitRows(1);
      window.click("Очистить");
      EXPECT_THAT(window.rows(), IsEmpty());
      scanner->send("after\r");
      EXPECT_THAT(window.awaitRows(1), ElementsAre(Row{"USB1:", "after 'CR' "}));
    });
  });
}

// The Enter of a scanner that types goes to the window as well.
TEST(TestWindow, ButtonsTakeNoFocusFromAClick) {
  inOwnProcess([] {
    visitWindow([](TestWindow& window) {
      for (const char* const label : {"Закрыть", "Очистить", "Копировать"}) {
        EXPECT_FALSE(gtk_button_get_focus_on_click(window.button(label))) << label;
      }
      EXPECT_FALSE(gtk_tree_view_get_enable_search(window.list()));
    });
  });
}

TEST(TestWindow, OpensAgainAndLeavesNothingBehind) {
  inOwnProcess([] {
    const auto scanner = scannerAt("/dev/ttyUSB0");
    rig::Driver driver;
    const auto scanOnce = [&](const std::string& scan) {
      visitWindow(driver.component, [&](TestWindow& window) {
        EXPECT_THAT(window.rows(), IsEmpty());
        scanner->send(scan + "\r");
        EXPECT_THAT(window.awaitRows(1), ElementsAre(Row{"USB1:", scan + " 'CR' "}));
        window.click("Закрыть");
        EXPECT_EQ(window.response(), 1);
      });
    };
    scanOnce("first");
    const std::size_t threads = rig::threadCount();
    const std::size_t descriptors = rig::descriptorCount();
    scanOnce("second");
    EXPECT_EQ(rig::threadCount(), threads);
    EXPECT_EQ(rig::descriptorCount(), descriptors);
    EXPECT_EQ(driver.component.memory().blocksOut(), 0);
  });
}

// Eight scanners send each scan as soon as the one before it is listed.
TEST(TestWindow, ListsTwoThousandScansInOrderPerPort) {
  inOwnProcess([] {
    constexpr std::size_t kPorts = 8;
    constexpr int kScans = 250;
    std::vector<std::unique_ptr<SerialLine>> scanners;
    std::vector<int> listed(kPorts, 0);
    for (std::size_t i = 0; i < kPorts; ++i) {
      scanners.push_back(scannerAt("/dev/ttyUSB" + std::to_string(i)));
    }
    visitWindow([&](TestWindow& window) {
      GtkTreeModel* const model = gtk_tree_view_get_model(window.list());
      for (const auto& scanner : scanners) scanner->send("0\r");
      int seen = 0;
      window.await("2000 rows", [&] {
        for (GtkTreeIter at; gtk_tree_model_iter_nth_child(model, &at, nullptr, seen); ++seen) {
          gchar* source = nullptr;
          gchar* data = nullptr;
          gtk_tree_model_get(model, &at, 0, &source, 1, &data, -1);
          const auto port = static_cast<std::size_t>(source[3] - '1');
          EXPECT_EQ(data, std::to_string(listed[port]) + " 'CR' ") << source;
          g_free(source);
          g_free(data);
          if (++listed[port] == kScans) continue;
          scanners[port]->send(std::to_string(listed[port]) + "\r");
        }
        return seen == static_cast<int>(kPorts) * kScans;
      });
    });
    EXPECT_THAT(listed, testing::Each(kScans));
  });
}

}  // namespace
