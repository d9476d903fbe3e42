// The settings form of a Linux desktop, with the serial ports and keyboards that it has now.
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
  // value base + n + 1 and the text `caption` followed by n + 1. A file found whose name has no
  // number, or below a folder of /dev, counts as number 0. Empty when find(1) cannot be run.
  std::wstring GetCOMDevicesList(std::string_view prefix, std::wstring_view caption,
                                 int base) const;

  // The choices for the X server's keyboards, in the server's order; value and text are the name
  // without the characters that XML or the device layer could stumble over. Empty without a
  // display.
  std::wstring GetEventDeviceListEnties() const;
};

}  // namespace quorvel
