// Running out of memory at a chosen moment.
#pragma once

namespace rig {

// While one lives, `new` throws std::bad_alloc on the thread that created it. Works only in
// programs that link this file's source, which replaces operator new.
class FailingAllocation {
 public:
  FailingAllocation();
  ~FailingAllocation();
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;
};

}  // namespace rig
