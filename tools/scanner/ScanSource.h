// The texts that a scanner of this folder scans, and what they have in common.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "tools/common/CommandLine.h"
#include "tools/common/EndSignals.h"
#include "util/Handles.h"

namespace terminal {

// Options that every kind of scanner has.
struct ScanOptions {
  std::string file;      // one scan a line; "-" is standard input; empty: texts from the arguments
  bool escapes = false;  // whether \xHH, \r, \n, \t and \\ stand for bytes
  std::string suffix = "\r";                // ends each scan
  std::chrono::microseconds pause{500000};  // between two scans
  std::chrono::microseconds byteDelay{0};   // after each byte
  int burst = 1;                            // scans without a pause between them

  // The table's rows of these options; they write into this object.
  std::vector<Option> table();
};

// Gives one text after another: the arguments, or the lines of a file as they come.
class ScanSource {
 public:
  // Without texts and without a file it reads standard input. Throws std::system_error for a file
  // that cannot be opened, UsageError for a text and a file together and for an escape that is
  // none.
  ScanSource(const ScanOptions& options, Arguments texts);

  // The bytes of the next scans up to a pause, their suffixes included; none at the end or when a
  // signal asks for it. Throws UsageError for a line with an escape that is none, std::system_error
  // when the file cannot be read.
  std::optional<std::string> nextBurst(const EndSignals& end);

 private:
  std::optional<std::string> next(const EndSignals& end);
  std::optional<std::string> nextLine(const EndSignals& end);

  const ScanOptions options_;
  Arguments texts_;
  std::size_t position_ = 0;
  quorvel::FileDescriptor file_;  // where the texts come from, unless they were given
  std::string pending_;           // read and not yet given out
  bool ended_ = false;
};

// The bytes that a text with escapes stands for. Throws UsageError.
std::string withoutEscapes(const std::string& text);

}  // namespace terminal
