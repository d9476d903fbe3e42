// The settings form of a Linux desktop, with the serial ports and keyboards present at the moment.
#pragma once

#include <string>
#include <string_view>

#include "parameters/ParametersTableBuilder.h"

namespace quorvel {

class LinuxParametersTableBuilder : public ParametersTableBuilder {
 public:
  using ParametersTableBuilder::ParametersTableBuilder;

  void BuildPortPart() override;
  void BuildKeyboardDevicePart() override;
  void BuildCOMPortSpeedPart() override;

  // The choices for one family of serial device files, by ascending number: file number n has the
  // value base + n + 1 and the text `caption` followed by n + 1. A file without a number in its
  // name, or in a subfolder of /dev, counts as number 0. Empty when find(1) cannot be run.
  std::wstring GetCOMDevicesList(std::string_view prefix, std::wstring_view caption,
                                 int base) const;

  // The choices for the X server's keyboards, in the server's order. Value and text are both the
  // name from settingsDeviceName. Empty without a display.
  std::wstring GetEventDeviceListEnties() const;
};

}  // namespace quorvel
