#include "tests/rig/Threads.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "tests/rig/Patience.h"
#include "tests/rig/Process.h"

namespace rig {
namespace {

std::ifstream accountOf(pid_t thread, const char* name) {
  const std::string path = "/proc/self/task/" + std::to_string(thread) + "/" + name;
  std::ifstream file(path);
  if (!file) throw std::runtime_error("cannot read " + path);
  return file;
}

// The word after "NAME:" in one of the thread's files in /proc.
std::string wordNamed(const std::string& name, pid_t thread, const char* account) {
  std::ifstream file = accountOf(thread, account);
  for (std::string word; file >> word;) {
    if (word == name + ":" && file >> word) return word;
  }
  throw std::runtime_error("no " + name + " of a thread");
}

long long numberNamed(const std::string& name, pid_t thread, const char* account) {
  return std::stoll(wordNamed(name, thread, account));
}

}  // namespace

std::set<pid_t> threads() {
  std::set<pid_t> ids;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/task")) {
    ids.insert(std::stoi(entry.path().filename()));
  }
  return ids;
}

pid_t threadAddedBy(const std::function<void()>& action) {
  settledThreadCount();
  const std::set<pid_t> before = threads();
  action();
  const std::set<pid_t> after = threads();
  std::vector<pid_t> added;
  std::set_difference(after.begin(), after.end(), before.begin(), before.end(),
                      std::back_inserter(added));
  if (added.size() != 1) throw std::runtime_error(std::to_string(added.size()) + " threads added");
  return added.front();
}

std::size_t settledThreadCount() {
  // A sanitizer starts a thread of its own along with the program's first.
  pid_t ended = 0;
  std::thread([&ended] { ended = gettid(); }).join();
  await("the end of a thread", [ended] { return !threads().contains(ended); });
  return threadCount();
}

void awaitThreadCount(std::size_t count) {
  await("the end of threads", [count] { return threadCount() <= count; });
}

std::chrono::nanoseconds processorTime(pid_t thread) {
  long long nanoseconds = 0;
  accountOf(thread, "schedstat") >> nanoseconds;
  return std::chrono::nanoseconds(nanoseconds);
}

long long sleepCount(pid_t thread) {
  return numberNamed("voluntary_ctxt_switches", thread, "status");
}

bool blocks(pid_t thread, int signal) {
  return std::stoull(wordNamed("SigBlk", thread, "status"), nullptr, 16) >> (signal - 1) & 1;
}

Reading readingOf(pid_t thread) {
  return {numberNamed("syscr", thread, "io"), numberNamed("rchar", thread, "io")};
}

}  // namespace rig
