// Text for the X clipboard. The function and its namespace are those of the clip library, which
// stands in for this one where it is installed.
#pragma once

#include <string>

namespace clip {

// Puts a text in UTF-8 on the clipboard of the display that the environment names, in place of what
// is there. Other programs can fetch it, whatever the caller's threads do meanwhile, until another
// text replaces it, the X server goes away or the process ends. False, with the clipboard as it
// was, when there is no display, or no memory or thread for it. Any thread; waits for the X server.
bool set_text(const std::string& text);

}  // namespace clip
