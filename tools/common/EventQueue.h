// The external events that a component has raised, oldest first.
#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "util/Handles.h"

namespace terminal {

struct Event {
  std::u16string source;
  std::u16string name;
  std::u16string data;
  std::chrono::system_clock::time_point time;  // when it was raised
};

// Filled on any thread, emptied on another.
class EventQueue {
 public:
  EventQueue();

  void push(Event event);

  // Removes and returns the oldest event; nothing if none comes within the time.
  std::optional<Event> take(std::chrono::milliseconds patience);

  // The same for `count` events. Fewer if one does not come within `patience` of the one before it.
  std::vector<Event> take(std::size_t count, std::chrono::milliseconds patience);

  // For poll(2): readable while the queue is not empty. Owned by the queue.
  int descriptor() const { return descriptor_.get(); }

 private:
  std::mutex mutex_;
  std::condition_variable filled_;
  std::deque<Event> events_;
  quorvel::FileDescriptor descriptor_;
};

}  // namespace terminal
