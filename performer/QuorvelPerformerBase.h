// The object behind the driver methods.
#pragma once

#include <functional>
#include <string>

#include "host/IAddInDefBaseEx.h"
#include "host/Variant.h"

namespace quorvel {

// Receives one scan: the identifier under which its device was opened, the equipment type code
// (Equipment.h) and the output data type code (OutputData.h) set at that time, and its bytes as
// base64 text. Runs on the device's reader thread.
using InputCallback = std::function<void(const std::wstring& deviceId, int equipmentType,
                                         int outputDataType, const std::wstring& data)>;

// Called on the host's thread. The order of the virtual functions is fixed.
class QuorvelPerformerBase {
 public:
  QuorvelPerformerBase(const QuorvelPerformerBase&) = delete;
  QuorvelPerformerBase& operator=(const QuorvelPerformerBase&) = delete;
  virtual ~QuorvelPerformerBase() = default;

  // Opens the device that the current parameters describe and registers it under `deviceId`. An
  // identifier already in use keeps its device, and the call succeeds. False when the device cannot
  // be opened.
  virtual bool OpenDevice(const std::wstring& deviceId) = 0;

  // Closes the device, which waits for its reader thread. False when no device is open under
  // `deviceId`.
  virtual bool CloseDevice(const std::wstring& deviceId) = 0;

  // Shows the test window and returns when the user has closed it. `deviceId` is ignored. Always
  // true.
  virtual bool TestDevice(const std::wstring& deviceId) = 0;

  // The connection error text: the only one, since no error state is kept.
  virtual std::wstring GetLastError(bool russian) = 0;

  // The settings form as an XML document.
  virtual std::wstring GetParameters() = 0;

  // Sets a parameter for devices opened from now on. The result is a boolean variant: whether the
  // name is known. A known name gives true even when its value was refused and nothing changed.
  virtual tVariant SetParameter(const wchar_t* name, const tVariant& value) = 0;

  // Always an empty variant: parameters cannot be read back.
  virtual tVariant GetParameter(const wchar_t* name) = 0;

 protected:
  QuorvelPerformerBase(IAddInDefBaseEx* connection, const InputCallback& callback)
      : connection_(connection), callback_(callback) {}

  IAddInDefBaseEx* const connection_;  // the host's
  const InputCallback callback_;
};

}  // namespace quorvel
