// The host's connection: what a component may ask of the host.
#pragma once

#include "host/Variant.h"

// Implemented by the host. The order of the virtual functions is a binary contract. The reserved
// ones are never called here and only keep the slots of the others.
class IAddInDefBaseEx {
 public:
  virtual ~IAddInDefBaseEx() = default;

  virtual void Reserved2() = 0;
  virtual void Reserved3() = 0;
  virtual void Reserved4() = 0;
  virtual void Reserved5() = 0;

  // Sets how many external events the host queues. False when it refuses.
  virtual bool SetEventBufferDepth(long depth) = 0;

  virtual void Reserved7() = 0;

  // Raises an external event. The texts are zero-terminated; the host copies them before it
  // returns. May be called on any thread. False when the host did not accept the event.
  virtual bool ExternalEvent(WCHAR_T* source, WCHAR_T* message, WCHAR_T* data) = 0;

  virtual void Reserved9() = 0;
  virtual void Reserved10() = 0;
  virtual void Reserved11() = 0;
  virtual void Reserved12() = 0;
};

static_assert(sizeof(IAddInDefBaseEx) == sizeof(void*));
