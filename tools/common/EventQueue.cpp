#include "tools/common/EventQueue.h"

#include <sys/eventfd.h>

#include <cerrno>
#include <system_error>
#include <utility>

namespace terminal {

// As a semaphore, the descriptor counts the events in the queue.
EventQueue::EventQueue() : descriptor_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK | EFD_SEMAPHORE)) {
  if (!descriptor_) throw std::system_error(errno, std::generic_category(), "eventfd");
}

void EventQueue::push(Event event) {
  const std::lock_guard lock(mutex_);
  events_.push_back(std::move(event));
  eventfd_write(descriptor(), 1);
  filled_.notify_one();
}

std::optional<Event> EventQueue::take(std::chrono::milliseconds patience) {
  std::unique_lock lock(mutex_);
  if (!filled_.wait_for(lock, patience, [this] { return !events_.empty(); })) return std::nullopt;
  Event event = std::move(events_.front());
  events_.pop_front();
  eventfd_t one;
  eventfd_read(descriptor(), &one);
  return event;
}

std::vector<Event> EventQueue::take(std::size_t count, std::chrono::milliseconds patience) {
  std::vector<Event> events;
  while (events.size() < count) {
    std::optional<Event> event = take(patience);
    if (!event) break;
    events.push_back(std::move(*event));
  }
  return events;
}

}  // namespace terminal
