// Standard output, whose failure is an error like any other.
#pragma once

#include <string_view>

namespace terminal {

// Write a text, or a text as a line, to standard output, at once. Throw std::system_error when the
// output cannot take it: a full disk, a pipe whose reader has gone.
void write(std::string_view text);
void writeLine(std::string_view line);

// Hands over what was written through std::cout; throws like write.
void flushOutput();

}  // namespace terminal
