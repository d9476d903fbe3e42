// The interfaces of a component object, called by the host.
//
// The order of the bases and of their virtual functions is a binary contract: never reorder or
// insert any.
#pragma once

#include "host/Variant.h"

// Start and end of a component's life. These and all operations below are called on the host's
// thread.
class IInitDoneBase {
 public:
  virtual ~IInitDoneBase() = default;

  // `connection` is the host's IAddInDefBaseEx and outlives the component. False: the component
  // cannot be used.
  virtual bool Init(void* connection) = 0;
  // `memoryManager` is the host's IMemoryManager and outlives the component.
  virtual bool setMemManager(void* memoryManager) = 0;
  // The interface revision that the component implements.
  virtual long GetInfo() = 0;
  virtual void Done() = 0;
};

// Properties and methods, found by name and used by number. Returned texts are allocated with the
// host's memory manager and owned by the host; null means that there is none.
class ILanguageExtenderBase {
 public:
  virtual ~ILanguageExtenderBase() = default;

  virtual bool RegisterExtensionAs(WCHAR_T** name) = 0;
  virtual long GetNProps() = 0;
  virtual long FindProp(const WCHAR_T* name) = 0;
  virtual const WCHAR_T* GetPropName(long num, long lang) = 0;
  virtual bool GetPropVal(long num, tVariant* value) = 0;
  virtual bool SetPropVal(long num, tVariant* value) = 0;
  virtual bool IsPropReadable(long num) = 0;
  virtual bool IsPropWritable(long num) = 0;
  virtual long GetNMethods() = 0;
  virtual long FindMethod(const WCHAR_T* name) = 0;
  virtual const WCHAR_T* GetMethodName(long num, long lang) = 0;
  virtual long GetNParams(long num) = 0;
  virtual bool GetParamDefValue(long num, long param, tVariant* value) = 0;
  virtual bool HasRetVal(long num) = 0;
  virtual bool CallAsProc(long num, tVariant* params, long count) = 0;
  virtual bool CallAsFunc(long num, tVariant* ret, tVariant* params, long count) = 0;
};

class LocaleBase {
 public:
  virtual ~LocaleBase() = default;

  // A locale name such as "ru_RU".
  virtual void SetLocale(const WCHAR_T* locale) = 0;
};

class IComponentBase : public IInitDoneBase, public ILanguageExtenderBase, public LocaleBase {
 public:
  ~IComponentBase() override = default;
};

static_assert(sizeof(IInitDoneBase) == sizeof(void*));
static_assert(sizeof(ILanguageExtenderBase) == sizeof(void*));
static_assert(sizeof(LocaleBase) == sizeof(void*));
static_assert(sizeof(IComponentBase) == 3 * sizeof(void*));
