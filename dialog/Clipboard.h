// Puts text on the X clipboard. The function has the signature of the clip library's, which is
// used instead of this file where it is installed.
#pragma once

#include <string>

namespace clip {

// Puts a UTF-8 text on the clipboard of the default display. A thread of its own serves the text to
// other programs until another text replaces it, the X server goes away or the process ends.
// Returns false and leaves the clipboard alone when there is no display, memory or thread for it.
// Waits for the X server. Any thread.
bool set_text(const std::string& text);

}  // namespace clip
