// The messages that the driver has dropped.
#pragma once

namespace terminal {

// How many since the last call, or the start. Any thread.
unsigned takeDroppedMessages();

}  // namespace terminal
