// Standard output with its failures reported.
#pragma once

#include <string_view>

namespace terminal {

// Write a text, or a text and a line feed, to standard output and flush it. Throw std::system_error
// on failure: a full disk, a pipe whose reader is gone.
void write(std::string_view text);
void writeLine(std::string_view line);

// Flushes std::cout; throws like write.
void flushOutput();

}  // namespace terminal
