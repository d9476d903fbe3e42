// The four functions that the library exports. The host calls them on one thread.
#include <array>
#include <string>

#include "addin/QuorvelNative.h"
#include "performer/Equipment.h"
#include "util/Log.h"
#include "util/WideStrings.h"

namespace {

struct ComponentClass {
  const wchar_t* name;
  const wchar_t* dataName;
};

constexpr std::array<ComponentClass, 2> kClasses = {{
    {L"InputDevice", quorvel::kBarcode.russian},
    {L"CardReaderDevice", quorvel::kTrackData.russian},
}};

std::wstring classNames() {
  std::wstring names;
  for (const ComponentClass& known : kClasses) {
    if (!names.empty()) names += L'|';
    names += known.name;
  }
  return names;
}

IComponentBase* createComponent(const std::wstring& name) {
  for (const ComponentClass& known : kClasses) {
    if (name == known.name) return new quorvel::QuorvelNative(known.name, known.dataName);
  }
  return nullptr;
}

}  // namespace

#define QUORVEL_EXPORT extern "C" __attribute__((visibility("default")))

// The names of the component classes, separated by "|". The text is never freed. Null when out of
// memory.
QUORVEL_EXPORT const WCHAR_T* GetClassNames() {
  static const WCHAR_T* names = nullptr;
  if (names) return names;
  try {
    WCHAR_T* converted = nullptr;
    quorvel::convToShortWchar(&converted, classNames().c_str());
    names = converted;
  } catch (...) {
  }
  return names;
}

// Creates a component of the named class in *slot, for DestroyObject to free, and returns its
// address. An object already in *slot is kept and its address returned. 0 for an unknown class.
QUORVEL_EXPORT long GetClassObject(const WCHAR_T* name, IComponentBase** slot) {
  if (!slot) return 0;
  try {
    // The path a log would be written to; logging is switched off.
    static_cast<void>(std::string(quorvel::kLogFolder) + quorvel::getLogFileName());
    if (!*slot) *slot = createComponent(quorvel::convFromShortWchar(name));
  } catch (...) {
  }
  return reinterpret_cast<long>(*slot);
}

// Destroys the component in *slot, sets *slot to null and returns 0. -1 when *slot is null.
QUORVEL_EXPORT long DestroyObject(IComponentBase** slot) {
  if (!slot || !*slot) return -1;
  delete *slot;
  *slot = nullptr;
  return 0;
}

// Always 1: the driver behaves the same in every host.
QUORVEL_EXPORT long SetPlatformCapabilities(int) { return 1; }
