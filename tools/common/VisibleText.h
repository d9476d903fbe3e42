// Text from outside, made safe to show: nothing in it can drive a terminal or reorder a line.
#pragma once

#include <string>
#include <string_view>

namespace terminal {

// The text as it may be written to a terminal. Control characters become their symbols, as ESC
// becomes U+241B; other characters that a terminal acts on become \uXXXX, and bytes that are not
// UTF-8 become \xHH. Characters listed in `kept` stay as they are.
std::string visible(std::string_view utf8, std::string_view kept = "");

// A JSON document with the same characters as \u escapes, which leaves its meaning unchanged.
std::string withEscapes(std::string_view json);

}  // namespace terminal
