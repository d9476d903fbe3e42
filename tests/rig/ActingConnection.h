// A host that acts inside an event.
#pragma once

#include <functional>
#include <string>
#include <utility>

#include "tools/common/ComponentHost.h"

namespace rig {

// A connection whose event of the scan "act" does something before it is taken, on the thread of
// the device.
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
