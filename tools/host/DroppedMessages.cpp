#include "tools/host/DroppedMessages.h"

#include <atomic>

#include "host/MessageDropped.h"

namespace {

std::atomic<unsigned> dropped = 0;

}  // namespace

void QuorvelMessageDropped() { ++dropped; }

namespace terminal {

unsigned takeDroppedMessages() { return dropped.exchange(0); }

}  // namespace terminal
