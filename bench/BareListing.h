// What a settings form cannot do without, as plainly as C can say it.
#pragma once

namespace bench {

// Runs find(1) for each of the three families of serial device files and reads what it prints,
// connects to the display, lists its input devices with the names of their types, and disconnects.
// Returns how many files and devices there were.
int listBarely();

}  // namespace bench
