// Prints events, one line each.
#pragma once

#include "tools/common/EventQueue.h"

namespace terminal {

enum class EventFormat {
  kText,  // the local time, the source, the name, and the data with control characters as symbols
  kJson,  // one object with the members time, source, event and data
};

// Throws std::system_error when standard output cannot be written.
void print(const Event& event, EventFormat format);

}  // namespace terminal
