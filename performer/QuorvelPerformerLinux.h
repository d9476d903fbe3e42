// The performer of Linux desktops.
#pragma once

#include <string>

#include "performer/QuorvelPerformerDesktop.h"

namespace quorvel {

class QuorvelPerformerLinux : public QuorvelPerformerDesktop {
 public:
  using QuorvelPerformerDesktop::QuorvelPerformerDesktop;

  // The form lists the devices that the machine has at the time of the call.
  std::wstring GetParameters() override;
};

}  // namespace quorvel
