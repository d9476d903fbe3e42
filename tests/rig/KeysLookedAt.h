// What a test can know of keys that the driver ignores: that it has looked at them.
#pragma once

namespace rig {

// Starts counting afresh. The program must export XFreeEventData, for the driver to call the one
// here in place of Xlib's.
void countKeysLookedAt();

// Waits until the driver has looked at so many presses and releases of keys since then. False when
// they do not come.
bool awaitKeysLookedAt(unsigned count);

}  // namespace rig
