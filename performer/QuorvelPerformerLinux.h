// The performer of Linux desktops.
#pragma once

#include "performer/QuorvelPerformerDesktop.h"

namespace quorvel {

class QuorvelPerformerLinux : public QuorvelPerformerDesktop {
 public:
  using QuorvelPerformerDesktop::QuorvelPerformerDesktop;

  // Describes the machine as it is now.
  std::wstring GetParameters() override;
};

}  // namespace quorvel
