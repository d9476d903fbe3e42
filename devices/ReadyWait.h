// Waiting until there is something to read, with select but for descriptors of any number.
#pragma once

#include <sys/select.h>

#include <chrono>
#include <optional>
#include <vector>

namespace quorvel {

// A wait that is set up once and repeated without allocating.
class ReadyWait {
 public:
  enum class Result { kReady, kWoken, kTimeout };

  // Waits for `descriptor`, and for `wake`, which ends the wait early (-1: nothing does). Both are
  // open and stay the caller's.
  explicit ReadyWait(int descriptor, int wake = -1);

  // Waits for at most `limit`; without one, until something comes. kReady when `descriptor` is
  // readable, even when `wake` is as well. A descriptor that cannot be waited for is a timeout.
  Result wait(std::optional<std::chrono::milliseconds> limit);

 private:
  void add(int descriptor);
  bool contains(int descriptor) const;
  fd_set* set() { return reinterpret_cast<fd_set*>(words_.data()); }

  const int descriptor_;
  const int wake_;
  std::vector<fd_mask> words_;
};

// Whether `descriptor` becomes readable within the time; so it does when reading from it fails. A
// time of all ones (the largest 32-bit value) waits without limit. False at once for descriptor 0
// and for what is no open descriptor. Works for descriptors of any number.
bool waitForReadyRead(int descriptor, unsigned long milliseconds);

}  // namespace quorvel
