// JSON for other programs, one object a line.
#pragma once

#include <nlohmann/json.hpp>

namespace terminal {

// Members keep the order in which they are given.
using Json = nlohmann::ordered_json;

// Writes one object as one line of standard output, in which nothing can drive a terminal; bytes
// that are not UTF-8 are replaced. Throws std::system_error when it cannot be written.
void writeJson(const Json& object);

}  // namespace terminal
