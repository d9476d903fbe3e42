#include "bench/AllocationCount.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace bench {
namespace {

constinit std::atomic<std::size_t> count = 0;

}  // namespace

std::size_t allocationCount() { return count; }

}  // namespace bench

void* operator new(std::size_t size) {
  bench::count.fetch_add(1, std::memory_order_relaxed);
  void* const block = std::malloc(size > 0 ? size : 1);
  if (!block) throw std::bad_alloc();
  return block;
}
void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
