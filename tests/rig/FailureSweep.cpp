#include "tests/rig/FailureSweep.h"

#include <dlfcn.h>
#include <execinfo.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <iostream>
#include <stdexcept>
#include <string_view>

namespace rig {
namespace {

constexpr unsigned kLongestAttempt = 25;  // seconds; the alarm ends what hangs

enum Outcome : int { kSurvived, kExpectationFailed, kNothingFailed, kEnded };

int reportTo = -1;

// The file in which the code at this address stands, without its folder.
const char* fileOf(void* address) {
  Dl_info info;
  if (!dladdr(address, &info) || !info.dli_fname) return "?";
  const char* const slash = std::strrchr(info.dli_fname, '/');
  return slash ? slash + 1 : info.dli_fname;
}

bool isCLibrary(const char* file) {
  for (const char* const start : {"libc.so", "libc-", "ld-", "libgcc", "libpthread", "linux-"}) {
    if (std::strncmp(file, start, std::strlen(start)) == 0) return true;
  }
  return std::strcmp(file, "?") == 0;
}

// What a program may do in a signal handler, but for the symbols, which nothing changes here.
void reportAndEnd(int signal) {
  const ExemptFromFailure rest;
  std::array<void*, 64> frames;
  const int count = backtrace(frames.data(), static_cast<int>(frames.size()));
  const char* const program = fileOf(reinterpret_cast<void*>(&reportAndEnd));
  const char* culprit = "?";
  bool inHandler = true;
  for (int i = 0; i < count; ++i) {
    const char* const file = fileOf(frames[static_cast<std::size_t>(i)]);
    inHandler = inHandler && std::strcmp(file, program) == 0;
    if (inHandler || isCLibrary(file)) continue;
    culprit = file;
    break;
  }
  static_cast<void>(!write(reportTo, culprit, std::strlen(culprit)));
  constexpr std::string_view kHang = ", by hanging";
  if (signal == SIGALRM) static_cast<void>(!write(reportTo, kHang.data(), kHang.size()));
  if (std::getenv("QUORVEL_SHOW_ENDS")) backtrace_symbols_fd(frames.data(), count, STDERR_FILENO);
  _exit(kEnded);
}

[[noreturn]] void attemptAndExit(const std::function<void(unsigned)>& attempt, unsigned first) {
  const ExemptFromFailure rest;
  // Loads what backtrace needs.
  std::array<void*, 1> frame;
  backtrace(frame.data(), 1);
  for (const int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGABRT, SIGALRM}) {
    ::signal(signal, reportAndEnd);
  }
  alarm(kLongestAttempt);
  try {
    attempt(first);
  } catch (const std::exception& error) {
    ADD_FAILURE() << error.what();
  }
  std::cout.flush();
  if (testing::Test::HasFailure()) _exit(kExpectationFailed);
  _exit(FailingCalls::failed() == 0 ? kNothingFailed : kSurvived);
}

struct End {
  int outcome;
  std::string culprit;
};

End runChild(const std::function<void(unsigned)>& attempt, unsigned first) {
  std::array<int, 2> report;
  if (pipe2(report.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  std::cout.flush();
  const pid_t child = fork();
  if (child == 0) {
    reportTo = report[1];
    attemptAndExit(attempt, first);
  }
  close(report[1]);
  std::array<char, 256> text;
  int status = 0;
  waitpid(child, &status, 0);
  const ssize_t got = read(report[0], text.data(), text.size());
  close(report[0]);
  return {.outcome = WIFEXITED(status) ? WEXITSTATUS(status) : kEnded,
          .culprit = got > 0 ? std::string(text.data(), static_cast<std::size_t>(got))
                             : "signal " + std::to_string(WTERMSIG(status))};
}

}  // namespace

void PrintTo(const Sweep& sweep, std::ostream* out) {
  *out << sweep.failure.name << (sweep.times == 1 ? ", once" : ", from then on");
}

Ends sweep(const Sweep& sweep, const std::function<void(unsigned first)>& attempt) {
  const bool every = std::getenv("QUORVEL_EVERY_FAILURE") != nullptr;
  if (sweep.onlyEvery && !every) {
    std::cout << "only with QUORVEL_EVERY_FAILURE, because it takes long\n";
    return {};
  }
  const unsigned step = every ? 1 : sweep.step;
  Ends ends;
  unsigned attempts = 0;
  for (unsigned first = 1; every || first <= sweep.most; first += step) {
    const End end = runChild(attempt, first);
    if (end.outcome == kNothingFailed) break;
    ++attempts;
    if (end.outcome == kEnded) ++ends[end.culprit];
    if (end.outcome != kExpectationFailed) continue;
    ADD_FAILURE() << "call " << first << ": see what the process said above";
    break;
  }
  PrintTo(sweep, &std::cout);
  std::cout << ": " << attempts << " points";
  for (const auto& [culprit, count] : ends) std::cout << "; " << count << " ended in " << culprit;
  std::cout << '\n';
  EXPECT_GT(attempts, 0U) << sweep.failure.name << ": nothing has failed";
  return ends;
}

}  // namespace rig
