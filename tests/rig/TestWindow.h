// The user of the device test window.
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

// A widget and all the widgets in it, in their order.
std::vector<GtkWidget*> widgetsIn(GtkWidget* container);

// The widgets of the open test window, and what a user does with them. Used inside its main loop,
// which runs while a function here waits.
class TestWindow {
 public:
  explicit TestWindow(GtkDialog* dialog);
  ~TestWindow();
  TestWindow(const TestWindow&) = delete;
  TestWindow& operator=(const TestWindow&) = delete;

  GtkDialog* dialog() const { return dialog_; }
  GtkTreeView* list() const { return list_; }

  // By which other programs know the window.
  unsigned long id() const;

  // All widgets inside the window, in their order, of one type of GTK's.
  std::vector<GtkWidget*> widgets(GType type) const;

  std::size_t rowCount() const;
  Row row(std::size_t index) const;
  std::vector<Row> rows() const;

  // The rows, when there are so many; throws std::runtime_error when they do not come.
  std::vector<Row> awaitRows(std::size_t count) const;

  // Lets the main loop run until the condition holds; throws std::runtime_error when it never does.
  void await(const std::string& what, const std::function<bool()>& condition) const;

  // Lets the main loop run for so long, or until the window is closed.
  void run(std::chrono::milliseconds time) const;

  // Throws std::runtime_error when there is no button with this label.
  GtkButton* button(const std::string& label) const;
  void click(const std::string& label) const { gtk_button_clicked(button(label)); }

  void select(int row) const;
  std::optional<int> selected() const;

  // Gives the window the focus of a server that has no window manager.
  void focus() const;

  // What the window was closed with; none while it is open.
  std::optional<int> response() const { return response_; }

 private:
  GtkDialog* dialog_;
  GtkTreeView* list_;
  std::optional<int> response_;
  gulong responseHandler_;
};

// Calls `show`, which shows a test window and returns when it is closed. As soon as the window
// stands, does `deeds`, and closes the window afterwards if it is still open. What `deeds` throws
// is thrown here. Warnings of GTK end the process.
void whileTestWindowIsOpen(const std::function<void()>& show,
                           const std::function<void(TestWindow&)>& deeds);

// The same with the DeviceTest of a component, which is expected to be true.
void visitWindow(terminal::Component& component, const std::function<void(TestWindow&)>& deeds);

// The same with a component of its own.
void visitWindow(const std::function<void(TestWindow&)>& deeds);

// A scanner whose scans come whole, at a serial port of this path.
std::unique_ptr<terminal::SerialLine> scannerAt(const std::string& path);

// The text on the clipboard as another program gets it, while this process does nothing; empty when
// there is none.
std::string clipboard();

// A test of the window, in a process of its own.
class WindowTest : public OnScreen {
 protected:
  // Plugs a scanner whose scans come whole into a serial port of this path. The port is removed
  // after the next process.
  terminal::SerialLine& plugIn(const std::string& path);

  // Runs `deeds` in the open window, in a process of its own, which has a component of its own.
  static void inWindow(const std::function<void(TestWindow&)>& deeds);

 private:
  std::vector<std::unique_ptr<terminal::SerialLine>> scanners_;
};

}  // namespace rig
