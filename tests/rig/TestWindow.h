// Plays the user of the device test window.
#pragma once

#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/rig/Driver.h"
#include "tests/rig/SharedXServer.h"
#include "tools/common/SerialLine.h"

namespace rig {

struct Row {
  std::string source;
  std::string data;
  bool operator==(const Row&) const = default;
};

// A widget and all the widgets inside it, in order.
std::vector<GtkWidget*> widgetsIn(GtkWidget* container);

// The open test window: its widgets, and what a user does with them. To be used inside the window's
// main loop, which runs while a function here waits.
class TestWindow {
 public:
  explicit TestWindow(GtkDialog* dialog);
  ~TestWindow();
  TestWindow(const TestWindow&) = delete;
  TestWindow& operator=(const TestWindow&) = delete;

  GtkDialog* dialog() const { return dialog_; }
  GtkTreeView* list() const { return list_; }

  // The window's X id.
  unsigned long id() const;

  // All widgets of a type inside the window, in order.
  std::vector<GtkWidget*> widgets(GType type) const;

  std::size_t rowCount() const;
  Row row(std::size_t index) const;
  std::vector<Row> rows() const;

  // Waits until there are at least `count` rows. Throws std::runtime_error when there never are.
  std::vector<Row> awaitRows(std::size_t count) const;

  // Runs the main loop until the condition holds. Throws std::runtime_error when it never does.
  void await(const std::string& what, const std::function<bool()>& condition) const;

  // Runs the main loop for this long, or until the window is closed.
  void run(std::chrono::milliseconds time) const;

  // Throws std::runtime_error when there is no button with this label.
  GtkButton* button(const std::string& label) const;
  void click(const std::string& label) const { gtk_button_clicked(button(label)); }

  void select(int row) const;
  std::optional<int> selected() const;

  // Gives the window the focus, without needing a window manager.
  void focus() const;

  // The response that closed the window; nothing while it is open.
  std::optional<int> response() const { return response_; }

 private:
  GtkDialog* dialog_;
  GtkTreeView* list_;
  std::optional<int> response_;
  gulong responseHandler_;
};

// Calls `show`, which shows a test window and returns when it is closed. Runs `actions` as soon as
// the window is open, and then closes it unless that has happened. Rethrows what `actions` throws.
// GTK warnings abort the process.
void whileTestWindowIsOpen(const std::function<void()>& show,
                           const std::function<void(TestWindow&)>& actions);

// The same, where a component shows the window; its DeviceTest is expected to return true.
void visitWindow(terminal::Component& component, const std::function<void(TestWindow&)>& actions);

// The same, with a new component.
void visitWindow(const std::function<void(TestWindow&)>& actions);

// A scanner on a framed line, at the serial port of this path.
std::unique_ptr<terminal::SerialLine> scannerAt(const std::string& path);

// The clipboard text as another program gets it, while this process waits; empty when there is no
// text.
std::string clipboard();

// A test of the window, in a process of its own.
class WindowTest : public OnScreen {
 protected:
  // Plugs a scanner on a framed line into the serial port of this path, which is removed after the
  // next call of inWindow.
  terminal::SerialLine& plugIn(const std::string& path);

  // Runs `actions` in the open window of a new component, in a process of its own.
  static void inWindow(const std::function<void(TestWindow&)>& actions);

 private:
  std::vector<std::unique_ptr<terminal::SerialLine>> scanners_;
};

}  // namespace rig
