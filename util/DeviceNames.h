// Device names as the settings form lists them and the settings store them.
#pragma once

#include <string>

namespace quorvel {

// Whether the byte's top bit is set.
bool NotASCII(char byte);

// Replaces "&", "<", ">", both quotes and every byte that is not ASCII by a space, in place. Always
// true.
bool TrimXMLIllegalChars(std::string& text);

// The name by which the settings know a device: the X server's name with TrimXMLIllegalChars
// applied and control characters replaced by spaces, too. XML cannot carry most of those, and its
// parsers read a tab or a line end in an attribute as a space. Of the same length as `name`.
std::string settingsDeviceName(std::string name);

}  // namespace quorvel
