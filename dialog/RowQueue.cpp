#include "dialog/RowQueue.h"

#include <utility>

#include "dialog/GtkFunctions.h"

namespace quorvel {
namespace {

// Rows shown per idle callback. Between two callbacks the window is drawn and its buttons answer,
// however fast rows come.
constexpr int kRowsPerCallback = 64;

}  // namespace

void RowQueue::push(Row row) {
  const std::lock_guard lock(mutex_);
  if (closed_) return;
  rows_.push_back(std::move(row));
  // Not g_main_context_invoke, which runs the function on this thread if no loop is running.
  if (source_ == 0) source_ = gdk_threads_add_idle(showSome, this);
}

void RowQueue::close() {
  const std::lock_guard lock(mutex_);
  closed_ = true;
  rows_.clear();
  if (source_ != 0) g_source_remove(source_);
  source_ = 0;
}

gboolean RowQueue::showSome(gpointer queue) {
  for (int shown = 0; shown < kRowsPerCallback; ++shown) {
    if (!static_cast<RowQueue*>(queue)->showNext()) return G_SOURCE_REMOVE;
  }
  return G_SOURCE_CONTINUE;
}

bool RowQueue::showNext() {
  Row row;
  {
    const std::lock_guard lock(mutex_);
    if (rows_.empty()) {
      source_ = 0;
      return false;
    }
    row = std::move(rows_.front());
    rows_.pop_front();
  }
  show_(row);
  return true;
}

}  // namespace quorvel
