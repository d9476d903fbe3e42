#include <gtest/gtest.h>

#include <csignal>

#include "util/SignalMask.h"

namespace quorvel {
namespace {

bool blocks(int number) {
  sigset_t mask;
  pthread_sigmask(SIG_SETMASK, nullptr, &mask);
  return sigismember(&mask, number) == 1;
}

TEST(SignalMask, AsynchronousHasEverySignalButTheFaults) {
  const sigset_t mask = SignalMask::asynchronous().get();
  for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGPIPE, SIGALRM, SIGCHLD, SIGRTMIN}) {
    EXPECT_EQ(sigismember(&mask, number), 1) << number;
  }
  for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGSYS}) {
    EXPECT_EQ(sigismember(&mask, fault), 0) << fault;
  }
}

TEST(SignalMask, CurrentIsTheMaskOfTheThreadWithoutTheFaults) {
  sigset_t blocked, before;
  sigemptyset(&blocked);
  sigaddset(&blocked, SIGUSR2);
  sigaddset(&blocked, SIGSEGV);
  pthread_sigmask(SIG_BLOCK, &blocked, &before);
  const sigset_t mask = SignalMask::current().get();
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  EXPECT_EQ(sigismember(&mask, SIGUSR2), 1);
  EXPECT_EQ(sigismember(&mask, SIGSEGV), 0);
  EXPECT_EQ(sigismember(&mask, SIGUSR1), sigismember(&before, SIGUSR1));
}

TEST(ScopedSignalMask, HoldsForItsScope) {
  ASSERT_FALSE(blocks(SIGUSR1));
  {
    const ScopedSignalMask scope(SignalMask::asynchronous());
    EXPECT_TRUE(blocks(SIGUSR1));
    EXPECT_FALSE(blocks(SIGSEGV));
  }
  EXPECT_FALSE(blocks(SIGUSR1));
}

}  // namespace
}  // namespace quorvel
