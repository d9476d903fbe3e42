// The external events that a component has raised, in their order.
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

  // The oldest event, or nothing when none comes within the time.
  std::optional<Event> take(std::chrono::milliseconds patience);

  // The oldest `count` events, or as many as came, each within `patience` of the one before it.
  std::vector<Event> take(std::size_t count, std::chrono::milliseconds patience);

  // Readable, for poll(2), while the queue holds something. Owned by the queue.
  int descriptor() const { return descriptor_.get(); }

 private:
  std::mutex mutex_;
  std::condition_variable filled_;
  std::deque<Event> events_;
  quorvel::FileDescriptor descriptor_;
};

}  // namespace terminal
