#include "tests/rig/TestWindow.h"

#include <gtest/gtest.h>

#include <exception>
#include <memory>
#include <stdexcept>

#include "tests/rig/OwnProcess.h"
#include "tests/rig/Program.h"

// After GoogleTest, whose names are macros in X.
#include <gdk/gdkx.h>

namespace rig {
namespace {

struct GFree {
  void operator()(void* memory) const { g_free(memory); }
};

void collect(GtkWidget* widget, gpointer found) {
  static_cast<std::vector<GtkWidget*>*>(found)->push_back(widget);
  if (GTK_IS_CONTAINER(widget)) gtk_container_forall(GTK_CONTAINER(widget), collect, found);
}

gboolean setFlag(gpointer flag) {
  *static_cast<bool*>(flag) = true;
  return G_SOURCE_REMOVE;
}

// The open test window, or null.
GtkDialog* findTestWindow() {
  GList* const toplevels = gtk_window_list_toplevels();
  GtkDialog* found = nullptr;
  for (GList* at = toplevels; at; at = at->next) {
    if (GTK_IS_DIALOG(at->data) && gtk_widget_get_visible(GTK_WIDGET(at->data))) {
      found = GTK_DIALOG(at->data);
    }
  }
  g_list_free(toplevels);
  return found;
}

// What to do in the window, and how that went.
struct Visit {
  const std::function<void(TestWindow&)>& actions;
  bool done = false;
  bool closed = false;
  std::exception_ptr thrown = nullptr;
};

gboolean visitWindow(gpointer data) {
  GtkDialog* const dialog = findTestWindow();
  if (!dialog) return G_SOURCE_CONTINUE;
  auto& visit = *static_cast<Visit*>(data);
  visit.done = true;
  g_object_ref(dialog);
  try {
    TestWindow window(dialog);
    visit.actions(window);
    if (window.response()) visit.closed = true;
  } catch (...) {
    visit.thrown = std::current_exception();
  }
  if (!visit.closed) gtk_dialog_response(dialog, GTK_RESPONSE_DELETE_EVENT);
  g_object_unref(dialog);
  return G_SOURCE_REMOVE;
}

}  // namespace

std::vector<GtkWidget*> widgetsIn(GtkWidget* container) {
  std::vector<GtkWidget*> all;
  collect(container, &all);
  return all;
}

TestWindow::TestWindow(GtkDialog* dialog) : dialog_(dialog) {
  const std::vector<GtkWidget*> lists = widgets(GTK_TYPE_TREE_VIEW);
  if (lists.size() != 1) throw std::runtime_error("the window does not have exactly one list");
  list_ = GTK_TREE_VIEW(lists.front());
  responseHandler_ = g_signal_connect(dialog_, "response",
                                      G_CALLBACK(+[](GtkDialog*, gint response, gpointer window) {
                                        static_cast<TestWindow*>(window)->response_ = response;
                                      }),
                                      this);
}

TestWindow::~TestWindow() {
  // A destroyed window has already disconnected its handlers.
  if (g_signal_handler_is_connected(dialog_, responseHandler_)) {
    g_signal_handler_disconnect(dialog_, responseHandler_);
  }
}

unsigned long TestWindow::id() const {
  return GDK_WINDOW_XID(gtk_widget_get_window(GTK_WIDGET(dialog_)));
}

std::vector<GtkWidget*> TestWindow::widgets(GType type) const {
  std::vector<GtkWidget*> all = widgetsIn(GTK_WIDGET(dialog_));
  std::erase_if(all,
                [type](GtkWidget* widget) { return !G_TYPE_CHECK_INSTANCE_TYPE(widget, type); });
  return all;
}

std::size_t TestWindow::rowCount() const {
  return static_cast<std::size_t>(
      gtk_tree_model_iter_n_children(gtk_tree_view_get_model(list_), nullptr));
}

Row TestWindow::row(std::size_t index) const {
  GtkTreeModel* const model = gtk_tree_view_get_model(list_);
  GtkTreeIter at;
  if (!gtk_tree_model_iter_nth_child(model, &at, nullptr, static_cast<gint>(index))) {
    throw std::runtime_error("no row " + std::to_string(index));
  }
  gchar* source = nullptr;
  gchar* data = nullptr;
  gtk_tree_model_get(model, &at, 0, &source, 1, &data, -1);
  const std::unique_ptr<gchar, GFree> ownedSource(source);
  const std::unique_ptr<gchar, GFree> ownedData(data);
  return {source ? source : "(null)", data ? data : "(null)"};
}

std::vector<Row> TestWindow::rows() const {
  std::vector<Row> rows;
  for (std::size_t i = 0; i < rowCount(); ++i) rows.push_back(row(i));
  return rows;
}

std::vector<Row> TestWindow::awaitRows(std::size_t count) const {
  await(std::to_string(count) + " rows", [&] { return rowCount() >= count; });
  return rows();
}

void TestWindow::await(const std::string& what, const std::function<bool()>& condition) const {
  bool expired = false;
  const guint timer =
      g_timeout_add_seconds(static_cast<guint>(kPatience.count()), setFlag, &expired);
  while (!condition() && !expired) g_main_context_iteration(nullptr, TRUE);
  if (expired) throw std::runtime_error("timed out waiting for " + what);
  g_source_remove(timer);
}

void TestWindow::run(std::chrono::milliseconds time) const {
  bool over = false;
  const guint timer = g_timeout_add(static_cast<guint>(time.count()), setFlag, &over);
  while (!over && !response_) g_main_context_iteration(nullptr, TRUE);
  if (!over) g_source_remove(timer);
}

GtkButton* TestWindow::button(const std::string& label) const {
  for (GtkWidget* const widget : widgets(GTK_TYPE_BUTTON)) {
    const gchar* const text = gtk_button_get_label(GTK_BUTTON(widget));
    if (text && text == label) return GTK_BUTTON(widget);
  }
  throw std::runtime_error("no button " + label);
}

void TestWindow::select(int row) const {
  GtkTreePath* const path = gtk_tree_path_new_from_indices(row, -1);
  gtk_tree_selection_select_path(gtk_tree_view_get_selection(list_), path);
  gtk_tree_path_free(path);
}

std::optional<int> TestWindow::selected() const {
  GtkTreeModel* model = nullptr;
  GtkTreeIter row;
  if (!gtk_tree_selection_get_selected(gtk_tree_view_get_selection(list_), &model, &row)) return {};
  GtkTreePath* const path = gtk_tree_model_get_path(model, &row);
  const int index = gtk_tree_path_get_indices(path)[0];
  gtk_tree_path_free(path);
  return index;
}

void TestWindow::focus() const {
  GdkWindow* const window = gtk_widget_get_window(GTK_WIDGET(dialog_));
  gdk_window_focus(window, GDK_CURRENT_TIME);
  await("the focus", [&] { return gtk_window_has_toplevel_focus(GTK_WINDOW(dialog_)) != FALSE; });
}

void whileTestWindowIsOpen(const std::function<void()>& show,
                           const std::function<void(TestWindow&)>& actions) {
  g_log_set_always_fatal(
      static_cast<GLogLevelFlags>(G_LOG_LEVEL_CRITICAL | G_LOG_LEVEL_WARNING | G_LOG_FATAL_MASK));
  Visit visit{actions};
  const guint source = g_timeout_add(0, visitWindow, &visit);
  show();
  if (!visit.done) {
    g_source_remove(source);
    throw std::runtime_error("no test window was shown");
  }
  if (visit.thrown) std::rethrow_exception(visit.thrown);
}

void visitWindow(terminal::Component& component, const std::function<void(TestWindow&)>& actions) {
  whileTestWindowIsOpen([&] { EXPECT_TRUE(component.test()); }, actions);
}

void visitWindow(const std::function<void(TestWindow&)>& actions) {
  Driver driver;
  visitWindow(driver.component, actions);
}

std::unique_ptr<terminal::SerialLine> scannerAt(const std::string& path) {
  auto line = std::make_unique<terminal::SerialLine>(terminal::LineSetting::kFramed);
  line->link(path);
  return line;
}

std::string clipboard() { return run({"xclip", "-o", "-selection", "clipboard"}).output; }

terminal::SerialLine& WindowTest::plugIn(const std::string& path) {
  return *scanners_.emplace_back(scannerAt(path));
}

void WindowTest::inWindow(const std::function<void(TestWindow&)>& actions) {
  inOwnProcess([&] { visitWindow(actions); });
}

}  // namespace rig
