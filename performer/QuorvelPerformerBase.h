// The object behind the driver methods.
#pragma once

#include <functional>
#include <string>

#include "host/IAddInDefBaseEx.h"
#include "host/Variant.h"

namespace quorvel {

// Receives one scan: the identifier under which its device was opened, the equipment type and the
// output data type that were set then (codes of AppSettings.h), and the base64 text of its bytes.
// Runs on the reader thread of the device.
using InputCallback = std::function<void(const std::wstring& deviceId, int equipmentType,
                                         int outputDataType, const std::wstring& data)>;

// Called on the host's thread. The order of the virtual functions is fixed.
class QuorvelPerformerBase {
 public:
  QuorvelPerformerBase(const QuorvelPerformerBase&) = delete;
  QuorvelPerformerBase& operator=(const QuorvelPerformerBase&) = delete;
  virtual ~QuorvelPerformerBase() = default;

  // Opens the device of the current parameters under an identifier. An identifier that is already
  // open keeps its device, and that is a success. False when the device cannot be opened.
  virtual bool OpenDevice(const std::wstring& deviceId) = 0;

  // Closes the device, which takes up to a second. False for an identifier that is not open.
  virtual bool CloseDevice(const std::wstring& deviceId) = 0;

  // Shows the test window until the user closes it. The identifier is not used. Always true.
  virtual bool TestDevice(const std::wstring& deviceId) = 0;

  // The one error text there is.
  virtual std::wstring GetLastError(bool russian) = 0;

  // The settings form as an XML document.
  virtual std::wstring GetParameters() = 0;

  // Sets a parameter for devices opened from now on. A boolean variant: false for a name that is
  // not known, true for one that is, even where the value was refused and nothing was changed.
  virtual tVariant SetParameter(const wchar_t* name, const tVariant& value) = 0;

  // Always an empty variant: parameters are not read back.
  virtual tVariant GetParameter(const wchar_t* name) = 0;

 protected:
  QuorvelPerformerBase(IAddInDefBaseEx* connection, const InputCallback& callback)
      : connection_(connection), callback_(callback) {}

  IAddInDefBaseEx* const connection_;  // the host's
  const InputCallback callback_;
};

}  // namespace quorvel
