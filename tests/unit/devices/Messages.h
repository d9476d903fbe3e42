// The messages of a device under test.
#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>

#include "devices/InputDevice.h"
#include "tests/rig/Patience.h"
#include "util/Base64.h"

namespace quorvel {

// Keeps the decoded messages in order. Must outlive the device.
class Messages {
 public:
  DataCallback callback() {
    return [this](const std::wstring& data) {
      const std::lock_guard lock(mutex_);
      messages_.push_back(base642Raw(data));
      arrived_.notify_one();
    };
  }

  // The next message. Throws when none comes.
  std::wstring take() {
    const std::optional<std::wstring> message = take(rig::kPatience);
    if (!message) throw std::runtime_error("no message came");
    return *message;
  }

  // The next message, if one comes within that time.
  std::optional<std::wstring> take(std::chrono::milliseconds patience) {
    std::unique_lock lock(mutex_);
    if (!arrived_.wait_for(lock, patience, [this] { return !messages_.empty(); })) return {};
    const std::wstring message = messages_.front();
    messages_.pop_front();
    return message;
  }

  std::size_t count() {
    const std::lock_guard lock(mutex_);
    return messages_.size();
  }

 private:
  std::mutex mutex_;
  std::condition_variable arrived_;
  std::deque<std::wstring> messages_;
};

}  // namespace quorvel
