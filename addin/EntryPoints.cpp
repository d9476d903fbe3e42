// The four functions that the library exports. The host calls them on one thread.
#include <array>
#include <string>

#include "addin/QuorvelNative.h"
#include "util/Log.h"
#include "util/WideStrings.h"

namespace {

constexpr const wchar_t* kClassNames = L"InputDevice|CardReaderDevice";

struct ComponentClass {
  const wchar_t* name;
  const wchar_t* dataName;
};

constexpr std::array<ComponentClass, 2> kClasses = {{
    {L"InputDevice", L"Штрихкод"},
    {L"CardReaderDevice", L"ДанныеКарты"},
}};

IComponentBase* createComponent(const std::wstring& name) {
  for (const ComponentClass& known : kClasses) {
    if (name == known.name) return new quorvel::QuorvelNative(known.name, known.dataName);
  }
  return nullptr;
}

}  // namespace

#define QUORVEL_EXPORT extern "C" __attribute__((visibility("default")))

// The names of the component classes, separated by "|". Never freed; null without memory.
QUORVEL_EXPORT const WCHAR_T* GetClassNames() {
  static const WCHAR_T* names = nullptr;
  if (names) return names;
  try {
    WCHAR_T* converted = nullptr;
    quorvel::convToShortWchar(&converted, kClassNames);
    names = converted;
  } catch (...) {
  }
  return names;
}

// Creates a component of the named class in *slot, which DestroyObject frees. Returns the address
// in *slot, 0 for a class that is not known; an object that is already there is left alone.
QUORVEL_EXPORT long GetClassObject(const WCHAR_T* name, IComponentBase** slot) {
  if (!slot) return 0;
  try {
    // What a log of this component would be written to.
    static_cast<void>(std::string(quorvel::kLogFolder) + quorvel::getLogFileName());
    if (!*slot) *slot = createComponent(quorvel::convFromShortWchar(name));
  } catch (...) {
  }
  return reinterpret_cast<long>(*slot);
}

// Destroys the component in *slot and nulls it: 0. -1 when there is none.
QUORVEL_EXPORT long DestroyObject(IComponentBase** slot) {
  if (!slot || !*slot) return -1;
  delete *slot;
  *slot = nullptr;
  return 0;
}

// The driver makes no difference between hosts. 1: it has taken note.
QUORVEL_EXPORT long SetPlatformCapabilities(int) { return 1; }
