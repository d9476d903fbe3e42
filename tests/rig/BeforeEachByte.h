// A hook into readers that read one byte at a time.
#pragma once

#include <functional>

namespace rig {

// While it lives, runs the action before each read(2) of a single byte, on the reading thread. Only
// one at a time, created and destroyed while no thread reads. Works only in programs that link this
// file's source, which replaces read.
class BeforeEachByte {
 public:
  explicit BeforeEachByte(std::function<void()> action);
  ~BeforeEachByte();
  BeforeEachByte(const BeforeEachByte&) = delete;
  BeforeEachByte& operator=(const BeforeEachByte&) = delete;
};

}  // namespace rig
