// A device on a raw line, fed so that its messages depend on the bytes alone, not on timing.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/rig/SerialDriver.h"
#include "tests/rig/Threads.h"
#include "util/Handles.h"

namespace rig {

// Blocks the reader inside the event with certain data.
class GatedConnection : public terminal::HostConnection {
 public:
  GatedConnection(terminal::EventQueue& events, std::u16string heldData)
      : HostConnection(events), heldData_(std::move(heldData)) {}

  // Waits until the reader is blocked, and lets it go on.
  void awaitHeld();
  void release();

  bool ExternalEvent(WCHAR_T* source, WCHAR_T* message, WCHAR_T* data) override;

 private:
  const std::u16string heldData_;
  std::mutex mutex_;
  std::condition_variable changed_;
  bool held_ = false;
};

// The bytes in base64.
std::u16string base64(std::string_view bytes);

// The bytes of the suffix that this value of the parameter, a character code, means; -1 means none.
std::string suffixBytes(std::int32_t code);

// Between calls the reader is blocked in the delivery of a message sent for this purpose, so that
// it finds everything sent by the next call at once.
class RawDevice {
 public:
  // Opens the port with this suffix.
  RawDevice(std::int32_t port, std::int32_t suffixCode);
  ~RawDevice();

  // Sends at most 4000 bytes, which the reader finds all at once. Returns its messages, in base64.
  std::vector<std::u16string> burst(std::string_view bytes);

  // Sends the bytes one at a time, with a pause after each, and each only after the reader has read
  // the one before and found no more.
  std::vector<std::u16string> drip(std::string_view bytes, std::chrono::microseconds pause);

 private:
  Reading readingAfter(const Reading& before, std::string_view bytes) const;
  void awaitReading(const Reading& expected) const;
  std::vector<std::u16string> holdReader();

  const std::string suffix_;
  const std::string holding_;  // the message that holds the reader
  terminal::EventQueue events_;
  GatedConnection gate_{events_, base64(holding_)};
  SerialDriver driver_;
  terminal::SerialLine& line_;
  quorvel::FileDescriptor port_;  // to see what waits in the line
  pid_t reader_;
};

}  // namespace rig
