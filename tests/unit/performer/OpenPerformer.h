// A performer that gives tests access to its members.
#pragma once

#include <string>

#include "performer/QuorvelPerformerLinux.h"

namespace quorvel::test {

class OpenPerformer : public QuorvelPerformerLinux {
 public:
  explicit OpenPerformer(const InputCallback& callback = ignoreInput)
      : QuorvelPerformerLinux(nullptr, callback) {}

  using QuorvelPerformerLinux::callback_;
  using QuorvelPerformerLinux::comPortFactory_;
  using QuorvelPerformerLinux::connection_;
  using QuorvelPerformerLinux::dataKind_;
  using QuorvelPerformerLinux::devices_;
  using QuorvelPerformerLinux::equipmentText_;
  using QuorvelPerformerLinux::keyboardFactory_;
  using QuorvelPerformerLinux::settings_;

  static void ignoreInput(const std::wstring&, int, int, const std::wstring&) {}
};

}  // namespace quorvel::test
