#include "tools/scanner/ScanSource.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <sstream>
#include <system_error>
#include <utility>

namespace terminal {
namespace {

constexpr Text kTwoSources = {"either texts or --file, not both",
                              "либо тексты, либо --file, но не оба"};
constexpr Text kCannotRead = {"cannot read the scans", "не удалось прочитать сканы"};
constexpr Text kBadEscape = {"not an escape: ", "неверная последовательность: "};

// The letter after the backslash, and the byte it means.
constexpr std::pair<char, char> kEscapes[] = {{'r', '\r'}, {'n', '\n'}, {'t', '\t'}, {'\\', '\\'}};

// From comma-separated character codes; none means no suffix.
std::string suffixFrom(const std::string& codes) {
  std::string suffix;
  std::istringstream list(codes);
  for (std::string code; std::getline(list, code, ',');) {
    suffix += static_cast<char>(integerFrom(code, "--suffix", 0, 255));
  }
  return suffix;
}

quorvel::FileDescriptor openSource(const std::string& file) {
  if (file.empty() || file == "-") return quorvel::FileDescriptor(dup(STDIN_FILENO));
  return quorvel::FileDescriptor(open(file.c_str(), O_RDONLY | O_CLOEXEC));
}

// Decodes the escape whose first character after the backslash is `text[at]`; moves `at` to its
// last.
char escapedByte(const std::string& text, std::size_t& at) {
  for (const auto& [letter, byte] : kEscapes) {
    if (at < text.size() && text[at] == letter) return byte;
  }
  const std::string digits = at < text.size() ? text.substr(at + 1, 2) : "";
  const bool hexadecimal =
      digits.size() == 2 && digits.find_first_not_of("0123456789abcdefABCDEF") == digits.npos;
  if (!hexadecimal || text[at] != 'x') throw UsageError(say(kBadEscape) + text);
  at += 2;
  return static_cast<char>(std::stoi(digits, nullptr, 16));
}

}  // namespace

std::vector<Option> ScanOptions::table() {
  const auto takeRate = [this](const std::string& value) {
    pause = std::chrono::microseconds(
        static_cast<long>(1000000 / numberFrom(value, "--rate", 0.01, 1000000)));
  };
  const auto takeByteDelay = [this](const std::string& value) {
    const double milliseconds = numberFrom(value, "--byte-delay", 0, 10000);
    byteDelay = std::chrono::microseconds(static_cast<long>(milliseconds * 1000));
  };
  const auto takeBurst = [this](const std::string& value) {
    burst = integerFrom(value, "--burst", 1, 10000);
  };
  return {{"file", true, [this](const std::string& value) { file = value; }},
          {"escapes", false, [this](const std::string&) { escapes = true; }},
          {"suffix", true, [this](const std::string& value) { suffix = suffixFrom(value); }},
          {"rate", true, takeRate},
          {"byte-delay", true, takeByteDelay},
          {"burst", true, takeBurst}};
}

std::string unescaped(const std::string& text) {
  std::string bytes;
  for (std::size_t at = 0; at < text.size(); ++at) {
    bytes += text[at] == '\\' ? escapedByte(text, ++at) : text[at];
  }
  return bytes;
}

ScanSource::ScanSource(const ScanOptions& options, Arguments texts)
    : options_(options), texts_(std::move(texts)) {
  if (!texts_.empty() && !options.file.empty()) throw UsageError(say(kTwoSources));
  if (!texts_.empty()) {
    // Done here, before anything is plugged in: a wrong command line must have no effect.
    if (options_.escapes) std::transform(texts_.begin(), texts_.end(), texts_.begin(), unescaped);
    return;
  }
  file_ = openSource(options.file);
  if (!file_) throw std::system_error(errno, std::generic_category(), options.file);
}

std::optional<std::string> ScanSource::nextBurst(const EndSignals& end) {
  std::optional<std::string> bytes;
  for (int i = 0; i < options_.burst; ++i) {
    const std::optional<std::string> text = next(end);
    if (!text) break;
    bytes = bytes.value_or("") + *text + options_.suffix;
  }
  return bytes;
}

std::optional<std::string> ScanSource::next(const EndSignals& end) {
  if (!file_) {
    return position_ < texts_.size() ? std::optional(texts_[position_++]) : std::nullopt;
  }
  std::optional<std::string> line = nextLine(end);
  if (line && options_.escapes) line = unescaped(*line);
  return line;
}

std::optional<std::string> ScanSource::nextLine(const EndSignals& end) {
  while (true) {
    const std::size_t newline = pending_.find('\n');
    if (newline != pending_.npos || (ended_ && !pending_.empty())) {
      std::string line = pending_.substr(0, newline);
      pending_.erase(0, newline == pending_.npos ? newline : newline + 1);
      return line;
    }
    if (ended_) return std::nullopt;
    pollfd waits[] = {{file_.get(), POLLIN, 0}, {end.descriptor(), POLLIN, 0}};
    if (poll(waits, 2, -1) < 0) continue;
    if (waits[1].revents) return std::nullopt;
    char buffer[4096];
    const ssize_t got = read(file_.get(), buffer, sizeof buffer);
    if (got < 0 && errno != EINTR) {
      throw std::system_error(errno, std::generic_category(), say(kCannotRead));
    }
    if (got > 0) pending_.append(buffer, static_cast<std::size_t>(got));
    ended_ = got == 0;
  }
}

}  // namespace terminal
