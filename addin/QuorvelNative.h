// The component object. The host creates one for each device that it connects.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "host/IAddInDefBaseEx.h"
#include "host/IComponentBase.h"
#include "host/IMemoryManager.h"
#include "performer/QuorvelPerformerBase.h"
#include "util/Language.h"

namespace quorvel {

// Of the host's driver interface.
inline constexpr int kInterfaceRevision = 2004;

// All operations but OnInput are called on the host's thread. None throws: an exception inside,
// such as bad_alloc, becomes the failure result of the operation. So does a null text or a null
// pointer to a result.
class QuorvelNative : public IComponentBase {
 public:
  // The component registers itself as `extensionName`, which also begins its device identifiers.
  QuorvelNative(const wchar_t* extensionName, const wchar_t* dataName);
  // Closes every open device.
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

  // A locale name with "ru" in it sets the Russian flag, which is never cleared: from then on every
  // call sets the process-wide locale to Russian, whatever its argument. Null counts as an empty
  // name.
  void SetLocale(const WCHAR_T* locale) override;

  // Raises one scan as an external event. Runs on the device's reader thread.
  void OnInput(const std::wstring& source, int equipmentType, int dataType,
               const std::wstring& data);

 private:
  struct Method {
    Bilingual name;
    long parameters;
    // Fills the result and the output parameters and returns whether the call succeeded. `params`
    // is not null when the method has parameters.
    bool (QuorvelNative::*handler)(tVariant& result, tVariant* params);
  };

  static const std::array<Method, 10> kMethods;  // by method number

  // Null when no method has this number.
  static const Method* methodOf(long number);
  // The number of the method with exactly this English or Russian name, or -1.
  static long findMethod(std::wstring_view name);

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

  // The connection and the memory manager are the host's. Reader threads read the connection.
  std::atomic<IAddInDefBaseEx*> connection_ = nullptr;
  IMemoryManager* memoryManager_ = nullptr;
  const std::wstring dataName_;
  const std::wstring extensionName_;
  std::uint32_t openCounter_ = 0;
  const std::wstring equipmentType_;
  bool russian_;
  std::unique_ptr<QuorvelPerformerBase> performer_;
};

}  // namespace quorvel
