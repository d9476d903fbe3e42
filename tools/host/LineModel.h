// What a terminal's line discipline makes of incoming bytes.
#pragma once

#include <termios.h>

#include <string>
#include <string_view>
#include <vector>

namespace terminal {

struct LineOutput {
  // What a reader gets. On a canonical line one entry for each line with its end, empty lines
  // left out; otherwise one entry with everything.
  std::vector<std::string> available;
  // What has come since the last end of a line, and is not handed over yet.
  std::string hidden;
};

// The longest line that the kernel keeps, its end included. What comes after that is lost.
constexpr std::size_t kLongestLine = 4096;

// The bytes as a line with this setting hands them over.
LineOutput throughLine(const termios& setting, std::string_view bytes);

}  // namespace terminal
