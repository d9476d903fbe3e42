#include "tests/rig/FailingAllocation.h"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace rig {
namespace {

constinit thread_local bool fails = false;

}  // namespace

FailingAllocation::FailingAllocation() { fails = true; }
FailingAllocation::~FailingAllocation() { fails = false; }

}  // namespace rig

void* operator new(std::size_t size) {
  void* const block = rig::fails ? nullptr : std::malloc(size > 0 ? size : 1);
  if (!block) throw std::bad_alloc();
  return block;
}
void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
