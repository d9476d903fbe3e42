// The data of an event that carries a message.
#pragma once

#include <string>

#include "tools/host/DriverSettings.h"

namespace terminal {

std::string eventData(const std::string& message, const DriverSettings& settings);

std::string toBase64(const std::string& bytes);

}  // namespace terminal
