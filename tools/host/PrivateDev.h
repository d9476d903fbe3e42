// A /dev of this process's own, where the kernel allows one.
#pragma once

namespace terminal {

// Puts an empty folder with pseudo terminals over /dev, for this process and its children alone; no
// privileges are needed where users may have namespaces. False, with nothing changed, where they
// may not. To be called before any other thread is started.
bool enterPrivateDev();

}  // namespace terminal
