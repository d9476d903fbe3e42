// The component object that the host creates for each device it connects.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

#include "host/IAddInDefBaseEx.h"
#include "host/IComponentBase.h"
#include "host/IMemoryManager.h"
#include "performer/QuorvelPerformerBase.h"

namespace quorvel {

// Of the host's driver interface.
inline constexpr int kInterfaceRevision = 2004;

// Called on the host's thread, but for OnInput. Nothing is thrown to the host: what fails for want
// of memory gives the same result as any other failure of the operation. A null text or a null
// place for a result is a failure, too.
class QuorvelNative : public IComponentBase {
 public:
  // `extensionName` is what the component is registered as, and begins its device identifiers.
  QuorvelNative(const wchar_t* extensionName, const wchar_t* dataName);
  // Closes every open device, which takes up to a second for each.
  ~QuorvelNative() override = default;

  bool Init(void* connection) override;
  bool setMemManager(void* memoryManager) override;
  long GetInfo() override;
  void Done() override;

  bool RegisterExtensionAs(WCHAR_T** name) override;
  long GetNProps() override;
  long FindProp(const WCHAR_T* name) override;
  const WCHAR_T* GetPropName(long num, long lang) override;
  bool GetPropVal(long num, tVariant* value) override;
  bool SetPropVal(long num, tVariant* value) override;
  bool IsPropReadable(long num) override;
  bool IsPropWritable(long num) override;
  long GetNMethods() override;
  long FindMethod(const WCHAR_T* name) override;
  const WCHAR_T* GetMethodName(long num, long lang) override;
  long GetNParams(long num) override;
  bool GetParamDefValue(long num, long param, tVariant* value) override;
  bool HasRetVal(long num) override;
  bool CallAsProc(long num, tVariant* params, long count) override;
  bool CallAsFunc(long num, tVariant* ret, tVariant* params, long count) override;

  // The Russian flag is set for good by the first locale that is Russian; from then on every locale
  // sets the process back to Russian.
  void SetLocale(const WCHAR_T* locale) override;

  // Raises one scan as an external event of the host. Runs on the reader thread of the device.
  void OnInput(const std::wstring& source, int equipmentType, int dataType,
               const std::wstring& data);

 private:
  // A driver method: fills its result and its output parameters, and returns whether the call
  // succeeded. `params` is not null where the method has parameters.
  using Handler = bool (QuorvelNative::*)(tVariant& result, tVariant* params);
  static const Handler kHandlers[];

  bool MethGetVersion(tVariant& result, tVariant* params);
  bool MethGetDescription(tVariant& result, tVariant* params);
  bool MethGetLastError(tVariant& result, tVariant* params);
  bool MethGetParameters(tVariant& result, tVariant* params);
  bool MethSetParameter(tVariant& result, tVariant* params);
  bool MethOpen(tVariant& result, tVariant* params);
  bool MethClose(tVariant& result, tVariant* params);
  bool MethDeviceTest(tVariant& result, tVariant* params);
  bool MethGetAdditionalActions(tVariant& result, tVariant* params);
  bool MethDoAdditionalAction(tVariant& result, tVariant* params);

  WCHAR_T* AllocAndConvert(const wchar_t* text) const;
  tVariant AllocAndConvertVariant(const wchar_t* text) const;

  // Written by Init and read by the readers.
  std::atomic<IAddInDefBaseEx*> connection_ = nullptr;  // the host's
  IMemoryManager* memoryManager_ = nullptr;             // the host's
  const std::wstring dataName_;
  const std::wstring extensionName_;
  std::uint32_t openCounter_ = 0;
  const std::wstring equipmentType_;
  bool russian_;
  std::unique_ptr<QuorvelPerformerBase> performer_;
};

}  // namespace quorvel
