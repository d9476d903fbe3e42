#include "util/SignalMask.h"

namespace quorvel {
namespace {

constexpr int kFaults[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGSYS};

}  // namespace

SignalMask::SignalMask(const sigset_t& mask) : mask_(mask) {
  for (const int fault : kFaults) sigdelset(&mask_, fault);
}

SignalMask SignalMask::current() {
  sigset_t mask;
  pthread_sigmask(SIG_SETMASK, nullptr, &mask);
  return SignalMask(mask);
}

SignalMask SignalMask::asynchronous() {
  sigset_t mask;
  sigfillset(&mask);
  return SignalMask(mask);
}

}  // namespace quorvel
