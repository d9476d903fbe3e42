// A host that does something while it receives an event.
#pragma once

#include <functional>
#include <string>
#include <utility>

#include "tools/common/ComponentHost.h"

namespace rig {

// Runs the action when the scan "act" arrives, before accepting its event, on the device's thread.
class ActingConnection : public terminal::HostConnection {
 public:
  ActingConnection(terminal::EventQueue& events, std::function<void()> action)
      : HostConnection(events), action_(std::move(action)) {}

  bool ExternalEvent(WCHAR_T* source, WCHAR_T* message, WCHAR_T* data) override {
    if (std::u16string(data) == u"act") action_();
    return HostConnection::ExternalEvent(source, message, data);
  }

 private:
  const std::function<void()> action_;
};

}  // namespace rig
