// What can be told of a keyboard without waiting for its keys.
#pragma once

#include <string>

#include "tools/host/Findings.h"
#include "tools/host/XDisplay.h"

namespace terminal {

// What keeps the component from opening the keyboard: there is no display or no keyboard of this
// name, or another program has grabbed it. Grabs it for a moment to see.
Findings keyboardObstacles(XDisplay& display, const std::string& formName);

// The session is a Wayland one, whose compositor decides which keys the X server gets; empty
// otherwise. The server tells, or else the environment.
Findings waylandWarnings(XDisplay& display);

// A window of another program has the focus; empty otherwise.
Findings focusWarnings(const XDisplay& display);

// The keyboard that the component reads under this name: the last one. -1 for none.
int keyboardNamed(XDisplay& display, const std::string& formName);

// Takes the keyboard for this connection alone, as the component does; false when another client
// has it. Until ungrabbed, its keys come here only.
bool grabKeyboard(const XDisplay& display, int device);
void ungrabKeyboard(const XDisplay& display, int device);

}  // namespace terminal
