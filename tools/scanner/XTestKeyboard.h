#pragma once

#include <memory>

#include "tools/common/KeyTyping.h"

namespace terminal {

// The keyboard that the XTEST extension of the default display offers: types into whatever has the
// focus. Throws std::runtime_error when there is no display or no such extension.
std::unique_ptr<VirtualKeyboard> connectXTestKeyboard();

}  // namespace terminal
