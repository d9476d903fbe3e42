#include "devices/MessageBytes.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "host/MessageDropped.h"
#include "util/ScopedWipe.h"

namespace quorvel {
namespace {

// What a reader keeps from one message to the next, so that a scan as a rule needs no new memory.
constexpr std::size_t kKept = 4096;

}  // namespace

MessageBytes::~MessageBytes() { wipe(bytes_); }

void MessageBytes::append(std::string_view bytes) {
  if (dropped_) return;
  if (bytes.size() > kLongestMessage - bytes_.size()) {
    drop();
    return;
  }
  try {
    makeRoomFor(bytes.size());
    bytes_ += bytes;
  } catch (const std::exception&) {
    drop();
  }
}

// A string that grows by itself leaves a copy behind.
void MessageBytes::makeRoomFor(std::size_t count) {
  if (count <= bytes_.capacity() - bytes_.size()) return;
  std::string larger;
  larger.reserve(std::max(2 * bytes_.capacity(), bytes_.size() + count));
  larger = bytes_;
  bytes_.swap(larger);
  wipe(larger);
}

void MessageBytes::drop() {
  const bool isNews = !dropped_;
  clear();
  dropped_ = true;
  if (isNews && QuorvelMessageDropped) QuorvelMessageDropped();
}

void MessageBytes::clear() {
  wipe(bytes_);
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
