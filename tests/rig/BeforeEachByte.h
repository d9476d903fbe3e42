// A moment of the test's choice in the work of a reader that reads byte by byte.
#pragma once

#include <functional>

namespace rig {

// While it lives, runs the action before each read(2) of a single byte, on the thread that reads.
// One at a time, made and destroyed while nobody reads. For programs that are linked with the rig's
// read.
class BeforeEachByte {
 public:
  explicit BeforeEachByte(std::function<void()> action);
  ~BeforeEachByte();
  BeforeEachByte(const BeforeEachByte&) = delete;
  BeforeEachByte& operator=(const BeforeEachByte&) = delete;
};

}  // namespace rig
