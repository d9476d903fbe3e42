// Events as lines of the output.
#pragma once

#include "tools/common/EventQueue.h"

namespace terminal {

enum class EventFormat {
  kText,  // the local time, the source, the name, and the data with control characters as symbols
  kJson,  // one object with the members time, source, event and data
};

// Writes one line; throws std::system_error when the output cannot take it.
void print(const Event& event, EventFormat format);

}  // namespace terminal
