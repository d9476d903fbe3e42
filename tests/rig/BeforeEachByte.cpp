#include "tests/rig/BeforeEachByte.h"

#include <sys/types.h>

#include <cstddef>
#include <utility>

#include "tests/rig/ReplacedFunction.h"

namespace {

std::function<void()> action;

}  // namespace

// Overrides the C library's: the dynamic linker searches the program first.
extern "C" __attribute__((visibility("default"))) ssize_t read(int descriptor, void* buffer,
                                                               std::size_t size) {
  static const auto real = rig::replacedFunction<ssize_t(int, void*, std::size_t)>("read");
  if (size == 1 && action) action();
  return real(descriptor, buffer, size);
}

namespace rig {

BeforeEachByte::BeforeEachByte(std::function<void()> beforeEach) { action = std::move(beforeEach); }
BeforeEachByte::~BeforeEachByte() { action = nullptr; }

}  // namespace rig
