// The way of rows from the reader threads to the window.
#pragma once

#include <glib.h>

#include <deque>
#include <functional>
#include <mutex>
#include <string>

namespace quorvel {

// A row of the list, in texts of RowTexts.h.
struct Row {
  std::string source;
  std::string data;
};

// Hands rows to the GTK main loop in the order in which they came.
class RowQueue {
 public:
  // `show` is called for each row in the GTK main loop.
  explicit RowQueue(std::function<void(const Row&)> show) : show_(std::move(show)) {}
  // GTK thread, when no other thread pushes any more.
  ~RowQueue() { close(); }
  RowQueue(const RowQueue&) = delete;
  RowQueue& operator=(const RowQueue&) = delete;

  // Any thread.
  void push(Row row);

  // Drops the rows that were not shown yet, and those that are still to come. GTK thread.
  void close();

 private:
  static gboolean showSome(gpointer queue);
  // False, and the main loop need not ask again, when there is none.
  bool showNext();

  const std::function<void(const Row&)> show_;
  std::mutex mutex_;
  std::deque<Row> rows_;
  bool closed_ = false;
  guint source_ = 0;  // in the main loop, while there are rows
};

}  // namespace quorvel
