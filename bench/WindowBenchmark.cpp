// How fast the test window shows rows that come without a pause, and what they take, beside a list
// that a bare program fills. Each filling is that of a new process.
#include <benchmark/benchmark.h>
#include <gtk/gtk.h>

#include <chrono>
#include <cstdlib>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "bench/Measure.h"
#include "bench/Memory.h"
#include "bench/Report.h"
#include "tests/rig/Environment.h"
#include "tests/rig/Program.h"
#include "tests/rig/SerialDriver.h"
#include "tests/rig/TestWindow.h"
#include "tests/rig/XServer.h"

// After GoogleTest, whose names are macros in X.
#include <gdk/gdkx.h>

namespace {

constexpr const char* kFill = "--fill";
constexpr std::string_view kOwn = "own";
constexpr std::string_view kBare = "bare";

constexpr std::int32_t kUsb1 = 129;
constexpr std::string_view kScan = "4600051000057";
constexpr int kRowsPerCallback = 64;  // as many as the test window's own
constexpr int kWidth = 700;
constexpr int kHeight = 500;

// Until nothing is left to draw, by this process or by the server.
void draw() {
  while (gtk_events_pending()) gtk_main_iteration();
  gdk_window_process_all_updates();
  XSync(GDK_DISPLAY_XDISPLAY(gdk_display_get_default()), False);
}

// Prints the seconds and the kilobytes that `fill` takes.
template <typename Fill>
void measure(const Fill& fill) {
  draw();
  const double memory = bench::memoryInUse().resident;
  const auto start = std::chrono::steady_clock::now();
  fill();
  draw();
  const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
  std::cout << time.count() << ' ' << bench::memoryInUse().resident - memory << '\n';
}

// Rows for the window come from a port without a suffix, where a message ends when there is nothing
// more to read: that is what an end-of-file character makes of the line before it.
void fillTestWindow(std::size_t rows) {
  rig::SerialDriver driver;
  terminal::SerialLine& line = driver.plugIn(kUsb1, terminal::LineSetting::kCooked);
  rig::outputOf({"stty", "-F", rig::portPath(kUsb1), "-echo"});
  std::string scans;
  for (std::size_t i = 0; i < rows; ++i) scans.append(kScan).append("\n\4");
  rig::whileTestWindowIsOpen([&] { driver.component.test(); },
                             [&](rig::TestWindow& window) {
                               line.waitForReader();
                               measure([&] {
                                 std::thread scanner([&] { line.send(scans); });
                                 window.await("all rows",
                                              [&] { return window.rowCount() >= rows; });
                                 scanner.join();
                               });
                               if (window.rowCount() != rows)
                                 throw std::runtime_error("scans came together");
                             });
}

struct BareList {
  GtkListStore* store = gtk_list_store_new(2, G_TYPE_STRING, G_TYPE_STRING);
  GtkWidget* view = gtk_tree_view_new_with_model(GTK_TREE_MODEL(store));
  std::size_t left = 0;
};

gboolean addRows(gpointer data) {
  auto& list = *static_cast<BareList*>(data);
  for (int i = 0; i < kRowsPerCallback && list.left > 0; ++i, --list.left) {
    GtkTreeIter row;
    gtk_list_store_append(list.store, &row);
    gtk_list_store_set(list.store, &row, 0, "USB1", 1, std::string(kScan).c_str(), -1);
    GtkTreePath* const path = gtk_tree_model_get_path(GTK_TREE_MODEL(list.store), &row);
    gtk_tree_view_scroll_to_cell(GTK_TREE_VIEW(list.view), path, nullptr, FALSE, 0, 0);
    gtk_tree_path_free(path);
  }
  return list.left > 0 ? G_SOURCE_CONTINUE : G_SOURCE_REMOVE;
}

void fillBareList(std::size_t rows) {
  gtk_init(nullptr, nullptr);
  BareList list;
  list.left = rows;
  for (int column = 0; column < 2; ++column) {
    gtk_tree_view_append_column(GTK_TREE_VIEW(list.view),
                                gtk_tree_view_column_new_with_attributes(
                                    "", gtk_cell_renderer_text_new(), "text", column, nullptr));
  }
  GtkWidget* const window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
  GtkWidget* const scrolled = gtk_scrolled_window_new(nullptr, nullptr);
  gtk_widget_set_size_request(window, kWidth, kHeight);
  gtk_container_add(GTK_CONTAINER(window), scrolled);
  gtk_container_add(GTK_CONTAINER(scrolled), list.view);
  gtk_widget_show_all(window);
  measure([&] {
    g_idle_add(addRows, &list);
    while (list.left > 0) gtk_main_iteration();
  });
  gtk_widget_destroy(window);
  g_object_unref(list.store);
}

struct Fillings {
  std::vector<double> seconds;
  std::vector<double> kilobytes;

  void add(std::string_view kind, std::int64_t rows) {
    std::istringstream costs(
        rig::outputOf({"/proc/self/exe", kFill, std::string(kind), std::to_string(rows)}));
    double time = 0, memory = 0;
    if (!(costs >> time >> memory)) throw std::runtime_error("no costs of a list");
    seconds.push_back(time);
    kilobytes.push_back(memory);
  }
};

// The two take turns, so that whatever else the machine does meets both alike.
void tenThousandRows(benchmark::State& state) {
  const std::int64_t rows = 10'000;
  const rig::XServer server({"Scanner"});
  const rig::ScopedVariable display("DISPLAY", server.display());
  Fillings own, bare;
  for (auto iteration : state) {
    own.add(kOwn, rows);
    bare.add(kBare, rows);
    state.SetIterationTime(own.seconds.back());
  }
  using bench::medianOf;
  bench::Figure figure = {.what = "test window, 10,000 rows",
                          .reference = "GTK list filled by a bare program",
                          .unit = "ms",
                          .own = 1000 * medianOf(own.seconds),
                          .ofReference = 1000 * medianOf(bare.seconds),
                          .atMost = 1.5};
  bench::report(figure);
  figure.what += ", memory";
  figure.unit = "kB";
  figure.own = medianOf(own.kilobytes);
  figure.ofReference = medianOf(bare.kilobytes);
  bench::report(figure);
}
BENCHMARK(tenThousandRows)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(bench::repetitions(5));

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string_view> words(argv + 1, argv + argc);
  if (words.size() == 3 && words[0] == kFill) {
    const std::size_t rows = std::stoul(argv[3]);
    words[1] == kOwn ? fillTestWindow(rows) : fillBareList(rows);
    return EXIT_SUCCESS;
  }
  return bench::run(argc, argv);
}
