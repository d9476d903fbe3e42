#include "tools/common/EndSignals.h"

#include <poll.h>
#include <signal.h>
#include <sys/signalfd.h>

#include <cerrno>
#include <system_error>

namespace terminal {

EndSignals::EndSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&signals, signal);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  descriptor_ = quorvel::FileDescriptor(signalfd(-1, &signals, SFD_CLOEXEC));
  if (!descriptor_) throw std::system_error(errno, std::generic_category(), "signalfd");
}

void EndSignals::wait() const {
  while (!wait(std::chrono::hours(1))) {
  }
}

bool EndSignals::wait(std::chrono::microseconds time) const {
  pollfd end = {descriptor(), POLLIN, 0};
  const timespec timeout = {static_cast<time_t>(time.count() / 1000000),
                            static_cast<long>(time.count() % 1000000 * 1000)};
  return ppoll(&end, 1, &timeout, nullptr) > 0;
}

}  // namespace terminal
