#include "tests/rig/Patience.h"

#include <stdexcept>
#include <string>
#include <thread>

namespace rig {

void await(const char* what, const std::function<bool()>& condition) {
  const auto end = std::chrono::steady_clock::now() + kPatience;
  for (int tries = 0; !condition(); ++tries) {
    if (std::chrono::steady_clock::now() > end) {
      throw std::runtime_error(std::string("timed out waiting for ") + what);
    }
    // Poll eagerly at first: most conditions hold soon.
    if (tries < 100) {
      std::this_thread::yield();
    } else {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  }
}

}  // namespace rig
