// Leaving nothing of a scan in memory that is free again: it may be the track of a bank card.
#pragma once

#include <string.h>

namespace quorvel {

// Overwrites and empties a string, what it may have held beyond its end included.
template <typename String>
void wipe(String& text) {
  explicit_bzero(text.data(), text.capacity() * sizeof *text.data());
  text.clear();
}

// Wipes a string at the end of the scope. The string must outlive this object and not grow, which
// would leave a copy behind.
template <typename String>
class ScopedWipe {
 public:
  explicit ScopedWipe(String& text) : text_(text) {}
  ~ScopedWipe() { wipe(text_); }
  ScopedWipe(const ScopedWipe&) = delete;
  ScopedWipe& operator=(const ScopedWipe&) = delete;

 private:
  String& text_;
};

}  // namespace quorvel
