// The host's allocator for texts that a component hands over.
#pragma once

// Implemented by the host. The order of the virtual functions is a binary contract.
class IMemoryManager {
 public:
  virtual ~IMemoryManager() = default;

  // Allocates `bytes` bytes, stores their address in *block and returns true; false when out of
  // memory. The host owns the block once it has been handed over.
  virtual bool AllocMemory(void** block, unsigned long bytes) = 0;

  // Frees a block from AllocMemory and sets *block to null.
  virtual void FreeMemory(void** block) = 0;
};

static_assert(sizeof(IMemoryManager) == sizeof(void*));
