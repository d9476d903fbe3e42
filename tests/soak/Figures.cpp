#include "tests/soak/Figures.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>

#include "tests/rig/Process.h"
#include "tests/rig/Threads.h"

namespace soak {
namespace {

constexpr const char* kSeconds = "QUORVEL_SOAK_SECONDS";
// What the C library, the toolkit and the X server's connection keep for later comes first.
constexpr int kFirst = 10;
// What they add now and then.
constexpr std::size_t kSlack = 32768;

}  // namespace

std::chrono::seconds duration() {
  const char* const seconds = std::getenv(kSeconds);
  return std::chrono::seconds(seconds ? std::max(std::atoi(seconds), 1) : 1);
}

bool isMeasured() {
#ifdef QUORVEL_SANITIZED
  return false;
#else
  return std::getenv(kSeconds) != nullptr;
#endif
}

void allowLongLife() {
  constexpr unsigned kRest = 120;
  alarm(static_cast<unsigned>(duration().count()) + kRest);
}

void report(const std::string& figure, const std::string& wanted, const std::string& measured) {
  std::cout << "figure|" << figure << '|' << wanted << '|' << measured << std::endl;
}

void expectNoGrowth(const std::string& figure, const std::function<void()>& action,
                    std::size_t bytes) {
  for (int i = 0; i < kFirst; ++i) action();
  const std::size_t threads = rig::settledThreadCount();
  const std::size_t descriptors = rig::descriptorCount();
  const std::size_t memory = rig::heapBytes();
  const auto end = std::chrono::steady_clock::now() + duration();
  std::size_t times = 0;
  for (; times == 0 || std::chrono::steady_clock::now() < end; ++times) action();
  rig::awaitThreadCount(threads);
  const std::size_t left = rig::descriptorCount();
  const auto grown = static_cast<long long>(rig::heapBytes()) - static_cast<long long>(memory);
  report(figure, "no growth",
         std::to_string(times) + " times: " + std::to_string(left) + " descriptors after " +
             std::to_string(descriptors) + ", " + std::to_string(grown) + " bytes of memory");
  EXPECT_LE(left, descriptors);
  EXPECT_LE(grown, static_cast<long long>(times * bytes + kSlack));
}

}  // namespace soak
