// Giving up root's right to open any file.
#pragma once

#include <linux/capability.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>

namespace rig {

// While it lives, file permissions apply to the calling thread, and to threads that it starts, even
// for root.
class WithoutPrivilege {
 public:
  WithoutPrivilege() {
    call(SYS_capget, before_);
    Sets without = {before_[0], before_[1]};
    without[0].effective &= ~(1U << CAP_DAC_OVERRIDE | 1U << CAP_DAC_READ_SEARCH);
    call(SYS_capset, without);
  }
  ~WithoutPrivilege() { call(SYS_capset, before_); }
  WithoutPrivilege(const WithoutPrivilege&) = delete;
  WithoutPrivilege& operator=(const WithoutPrivilege&) = delete;

 private:
  using Sets = std::array<__user_cap_data_struct, 2>;
  static void call(long number, Sets& sets) {
    __user_cap_header_struct header = {_LINUX_CAPABILITY_VERSION_3, 0};
    syscall(number, &header, sets.data());
  }
  Sets before_;
};

}  // namespace rig
