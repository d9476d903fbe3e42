#include "devices/ReadyWait.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <limits>

namespace quorvel {
namespace {

constexpr std::size_t kBitsPerWord = std::numeric_limits<unsigned long>::digits;
static_assert(sizeof(fd_mask) == sizeof(unsigned long));

timeval toTimeval(std::chrono::milliseconds time) {
  return {static_cast<time_t>(time.count() / 1000),
          static_cast<suseconds_t>(time.count() % 1000 * 1000)};
}

}  // namespace

// An fd_set ends at descriptor 1023, and FD_SET aborts the process beyond it. But select may look
// at a whole fd_set.
ReadyWait::ReadyWait(int descriptor, int wake)
    : descriptor_(descriptor),
      wake_(wake),
      words_(std::max(static_cast<std::size_t>(std::max(descriptor, wake)) / kBitsPerWord + 1,
                      sizeof(fd_set) / sizeof(fd_mask))) {}

ReadyWait::Result ReadyWait::wait(std::optional<std::chrono::milliseconds> limit) {
  timeval left = toTimeval(limit.value_or(std::chrono::milliseconds(0)));
  int ready;
  do {
    std::fill(words_.begin(), words_.end(), 0);
    add(descriptor_);
    if (wake_ >= 0) add(wake_);
    // Linux leaves in `left` what an interrupted wait had not used up.
    ready =
        select(std::max(descriptor_, wake_) + 1, set(), nullptr, nullptr, limit ? &left : nullptr);
  } while (ready < 0 && errno == EINTR);
  if (ready <= 0) return Result::kTimeout;
  return contains(descriptor_) ? Result::kReady : Result::kWoken;
}

void ReadyWait::add(int descriptor) {
  const auto number = static_cast<std::size_t>(descriptor);
  const unsigned long bit = 1UL << number % kBitsPerWord;
  words_[number / kBitsPerWord] |= static_cast<fd_mask>(bit);
}

bool ReadyWait::contains(int descriptor) const {
  const auto number = static_cast<std::size_t>(descriptor);
  return static_cast<unsigned long>(words_[number / kBitsPerWord]) >> number % kBitsPerWord & 1;
}

bool waitForReadyRead(int descriptor, unsigned long milliseconds) {
  // select overlooks numbers beyond the process's descriptor table, and would wait for nothing.
  if (descriptor <= 0 || ::fcntl(descriptor, F_GETFD) < 0) return false;
  std::optional<std::chrono::milliseconds> limit;
  if (milliseconds != std::numeric_limits<std::uint32_t>::max()) {
    limit = std::chrono::milliseconds(milliseconds);
  }
  return ReadyWait(descriptor).wait(limit) == ReadyWait::Result::kReady;
}

}  // namespace quorvel
