// The host's allocator for strings that a component hands over.
#pragma once

// Implemented by the host. The order of the virtual functions is the binary contract.
class IMemoryManager {
 public:
  virtual ~IMemoryManager() = default;

  // Stores a block of `bytes` bytes in *block and returns true, or returns false and leaves no
  // block. The block belongs to the host once it has been handed over.
  virtual bool AllocMemory(void** block, unsigned long bytes) = 0;

  // Frees a block of AllocMemory and nulls *block.
  virtual void FreeMemory(void** block) = 0;
};

static_assert(sizeof(IMemoryManager) == sizeof(void*));
