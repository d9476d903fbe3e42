// Lets a test wait until the driver has handled keys that it ignores.
#pragma once

namespace rig {

// Restarts the count at 0. The program must export XFreeEventData, so that the driver calls ours
// instead of Xlib's.
void countKeysLookedAt();

// Waits until the driver has handled that many key presses and releases since then. False when it
// has not within kPatience.
bool awaitKeysLookedAt(unsigned count);

}  // namespace rig
