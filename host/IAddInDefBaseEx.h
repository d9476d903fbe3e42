// The host's connection: what a component may ask of the host.
#pragma once

#include "host/Variant.h"

// Implemented by the host. The order of the virtual functions is the binary contract; the reserved
// ones belong to the host's other components, are never called here and only keep their slots.
class IAddInDefBaseEx {
 public:
  virtual ~IAddInDefBaseEx() = default;

  virtual void Reserved2() = 0;
  virtual void Reserved3() = 0;
  virtual void Reserved4() = 0;
  virtual void Reserved5() = 0;

  // Sets how many external events the host keeps queued. False when it refuses.
  virtual bool SetEventBufferDepth(long depth) = 0;

  virtual void Reserved7() = 0;

  // Raises an external event. The host copies the three zero-terminated texts before it returns;
  // they stay the caller's. May be called on any thread. False when the event was not taken.
  virtual bool ExternalEvent(WCHAR_T* source, WCHAR_T* message, WCHAR_T* data) = 0;

  virtual void Reserved9() = 0;
  virtual void Reserved10() = 0;
  virtual void Reserved11() = 0;
  virtual void Reserved12() = 0;
};

static_assert(sizeof(IAddInDefBaseEx) == sizeof(void*));
