// The options that name a device and the parameters to open it with.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/common/CommandLine.h"
#include "tools/common/ComponentHost.h"

namespace terminal {

// A parameter's name and its value as a person wrote it.
struct Assignment {
  std::string name;
  std::string value;
};

struct DeviceOptions {
  // One of the two once the command line has been read.
  std::optional<std::int32_t> port;
  std::optional<std::string> keyboard;  // by its name in the form
  std::vector<Assignment> parameters;   // in their order

  // The rows of --port, --keyboard and --set; they write into this object.
  std::vector<Option> table();
  // Throws UsageError unless exactly one device was named.
  void requireDevice() const;

  // The last value that was given to a numeric parameter, or its default. Throws UsageError.
  std::int32_t number(const std::string& name, std::int32_t otherwise) const;

  // Sets the device and the parameters. Throws UsageError for a parameter that the component does
  // not know and for a value that is not of the parameter's type.
  void applyTo(Component& component) const;
};

}  // namespace terminal
