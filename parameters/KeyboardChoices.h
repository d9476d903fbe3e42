// The choices of the KeyboardDevice parameter.
#pragma once

#include <string>
#include <vector>

#include "devices/KeyboardList.h"

namespace quorvel {

// One choice for each keyboard among the devices, in their order. Value and text are both its name.
std::wstring keyboardChoices(const std::vector<XInputDevice>& devices);

}  // namespace quorvel
