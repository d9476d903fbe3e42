#include "devices/MessageBytes.h"

#include <exception>
#include <utility>

namespace quorvel {
namespace {

// What a reader keeps from one message to the next, so that a scan as a rule needs no new memory.
constexpr std::size_t kKept = 4096;

}  // namespace

void MessageBytes::append(std::string_view bytes) {
  if (dropped_) return;
  if (bytes.size() > kLongestMessage - bytes_.size()) {
    drop();
    return;
  }
  try {
    bytes_ += bytes;
  } catch (const std::exception&) {
    drop();
  }
}

void MessageBytes::drop() {
  clear();
  dropped_ = true;
}

void MessageBytes::clear() {
  bytes_.clear();
  if (bytes_.capacity() > kKept) std::string().swap(bytes_);
  dropped_ = false;
}

bool MessageBytes::cutTail(std::size_t count) {
  if (dropped_ || bytes_.size() < count) return false;
  bytes_.resize(bytes_.size() - count);
  return true;
}

std::optional<std::string> MessageBytes::take() {
  std::optional<std::string> message;
  if (!dropped_) message = std::move(bytes_);
  clear();
  return message;
}

}  // namespace quorvel
