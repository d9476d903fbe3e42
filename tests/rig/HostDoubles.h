// Doubles of the host for tests of one class: they record every call, and fail on request. The host
// that loads a whole library is in tools/common/ComponentHost.h.
#pragma once

#include <cstddef>
#include <memory>
#include <mutex>
#include <new>
#include <string>
#include <vector>

#include "host/IAddInDefBaseEx.h"
#include "host/IMemoryManager.h"

namespace rig {

// Frees its blocks when destroyed, as a host frees the texts that it was given. A component must
// not.
class FakeMemoryManager : public IMemoryManager {
 public:
  enum class Answer { kBlock, kRefusal, kSuccessWithoutBlock, kException };

  bool AllocMemory(void** block, unsigned long bytes) override {
    requests.push_back(bytes);
    *block = nullptr;
    if (answer == Answer::kException) throw std::bad_alloc();
    if (answer != Answer::kBlock) return answer == Answer::kSuccessWithoutBlock;
    blocks_.push_back(std::make_unique<std::byte[]>(bytes));
    *block = blocks_.back().get();
    return true;
  }

  void FreeMemory(void**) override { ++freed; }

  Answer answer = Answer::kBlock;
  std::vector<unsigned long> requests;  // in bytes
  int freed = 0;                        // calls of FreeMemory

 private:
  std::vector<std::unique_ptr<std::byte[]>> blocks_;
};

struct Event {
  std::u16string source;
  std::u16string name;
  std::u16string data;

  bool operator==(const Event&) const = default;
};

// Records the events, which may come on any thread.
class FakeConnection : public IAddInDefBaseEx {
 public:
  void Reserved2() override { ++reservedCalls; }
  void Reserved3() override { ++reservedCalls; }
  void Reserved4() override { ++reservedCalls; }
  void Reserved5() override { ++reservedCalls; }
  void Reserved7() override { ++reservedCalls; }
  void Reserved9() override { ++reservedCalls; }
  void Reserved10() override { ++reservedCalls; }
  void Reserved11() override { ++reservedCalls; }
  void Reserved12() override { ++reservedCalls; }

  bool SetEventBufferDepth(long depth) override {
    depths.push_back(depth);
    if (throwsOnDepth) throw std::bad_alloc();
    return takesDepth;
  }

  bool ExternalEvent(WCHAR_T* source, WCHAR_T* message, WCHAR_T* data) override {
    const std::lock_guard lock(mutex_);
    events_.push_back({source, message, data});
    return true;
  }

  std::vector<Event> events() const {
    const std::lock_guard lock(mutex_);
    return events_;
  }

  bool takesDepth = true;
  bool throwsOnDepth = false;
  std::vector<long> depths;
  int reservedCalls = 0;

 private:
  mutable std::mutex mutex_;
  std::vector<Event> events_;
};

}  // namespace rig
