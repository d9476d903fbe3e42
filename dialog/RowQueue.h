// Passes rows from the reader threads to the window.
#pragma once

#include <glib.h>

#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <utility>

namespace quorvel {

// A row of the list; the texts are made by RowTexts.h.
struct Row {
  std::string source;
  std::string data;
};

// Hands rows to the GTK main loop in order of arrival. For use once GTK has been opened.
class RowQueue {
 public:
  // The GTK main loop calls `show` for each row.
  explicit RowQueue(std::function<void(const Row&)> show) : show_(std::move(show)) {}
  // GTK thread, after the last push.
  ~RowQueue() { close(); }
  RowQueue(const RowQueue&) = delete;
  RowQueue& operator=(const RowQueue&) = delete;

  // Any thread.
  void push(Row row);

  // Drops rows not yet shown, and all later ones. GTK thread.
  void close();

 private:
  static gboolean showSome(gpointer queue);
  // Shows one row. Returns false, and forgets the source, when the queue is empty.
  bool showNext();

  const std::function<void(const Row&)> show_;
  std::mutex mutex_;
  std::deque<Row> rows_;
  bool closed_ = false;
  guint source_ = 0;  // the idle source; 0 while the queue is empty
};

}  // namespace quorvel
