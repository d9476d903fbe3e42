// A process that runs out of memory at a moment of the test's choice.
#pragma once

namespace rig {

// While one lives, `new` throws std::bad_alloc on the thread that made it. For programs that are
// linked with the rig's operator new.
class FailingAllocation {
 public:
  FailingAllocation();
  ~FailingAllocation();
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;
};

}  // namespace rig
