// A connection to a host that takes whatever comes and does nothing. Hosts override what they are
// interested in.
#pragma once

#include "host/IAddInDefBaseEx.h"

namespace terminal {

class IdleConnection : public IAddInDefBaseEx {
 public:
  void Reserved2() override {}
  void Reserved3() override {}
  void Reserved4() override {}
  void Reserved5() override {}
  bool SetEventBufferDepth(long) override { return true; }
  void Reserved7() override {}
  bool ExternalEvent(WCHAR_T*, WCHAR_T*, WCHAR_T*) override { return true; }
  void Reserved9() override {}
  void Reserved10() override {}
  void Reserved11() override {}
  void Reserved12() override {}
};

}  // namespace terminal
