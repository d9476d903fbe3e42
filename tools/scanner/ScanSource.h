// Where a played scanner gets its scans from, and the options for that.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "tools/common/CommandLine.h"
#include "tools/common/EndSignals.h"
#include "util/Handles.h"

namespace terminal {

// The options that all kinds of scanners share.
struct ScanOptions {
  std::string file;      // one scan a line; "-" is standard input; empty: texts from the arguments
  bool escapes = false;  // whether \xHH, \r, \n, \t and \\ stand for bytes
  std::string suffix = "\r";                // ends each scan
  std::chrono::microseconds pause{500000};  // between two scans
  std::chrono::microseconds byteDelay{0};   // after each byte
  int burst = 1;                            // scans without a pause between them

  // The option table's rows for these; they write into this object.
  std::vector<Option> table();
};

// Scans one after another: the arguments, or the lines of a file as they arrive.
class ScanSource {
 public:
  // Reads standard input when there are neither texts nor a file. Throws std::system_error when the
  // file cannot be opened, UsageError for texts together with a file and for an invalid escape.
  ScanSource(const ScanOptions& options, Arguments texts);

  // The bytes of the scans up to the next pause, suffixes included; nothing at the end or when a
  // signal asks to end. Throws UsageError for an invalid escape, std::system_error when the file
  // cannot be read.
  std::optional<std::string> nextBurst(const EndSignals& end);

 private:
  std::optional<std::string> next(const EndSignals& end);
  std::optional<std::string> nextLine(const EndSignals& end);

  const ScanOptions options_;
  Arguments texts_;
  std::size_t position_ = 0;
  quorvel::FileDescriptor file_;  // the source of the texts, unless they are arguments
  std::string pending_;           // read but not yet returned
  bool ended_ = false;
};

// The text with its escapes replaced by the bytes they mean. Throws UsageError for an invalid one.
std::string unescaped(const std::string& text);

}  // namespace terminal
