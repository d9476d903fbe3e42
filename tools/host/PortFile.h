// Port numbers, the device files that they stand for, and what the component calls them.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace terminal {

// The device file of a port number, 1 or greater.
std::string portFile(std::int32_t port);

// The number of a device file by its own name, such as /dev/ttyUSB0. Nothing for any other name.
std::optional<std::int32_t> portOfName(const std::string& file);

// The number of the first port met on the way from a file, link by link. Nothing when the way ends
// elsewhere.
std::optional<std::int32_t> portBehind(std::filesystem::path file);

// The number that a person names by itself or by a device file, which may be a link: the stable
// names in /dev/serial/by-id lead to their port. Throws UsageError.
std::int32_t portFrom(const std::string& numberOrFile);

// What the settings form and the test window call a port.
std::string formName(std::int32_t port);
std::string windowName(std::int32_t port);

}  // namespace terminal
