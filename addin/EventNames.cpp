#include "addin/EventNames.h"

#include <algorithm>
#include <array>

#include "performer/AppSettings.h"

namespace quorvel {
namespace {

struct EventName {
  unsigned key;                         // equipment type and data type, bit by bit
  std::array<const wchar_t*, 2> names;  // by locale
};

// The first is the one that every unknown key falls back to.
constexpr std::array<EventName, 4> kEventNames = {{
    {kBarcodeScanner, {L"Штрихкод", L"Barcode"}},
    {kBarcodeScanner | kBase64, {L"ШтрихкодBase64", L"BarcodeBase64"}},
    {kMagneticCardReader, {L"ДанныеКарты", L"TrackData"}},
    {kMagneticCardReader | kBase64, {L"ДанныеКартыBase64", L"TrackDataBase64"}},
}};

}  // namespace

const wchar_t* eventNameOf(int equipmentType, int dataType, unsigned locale) {
  const auto key = static_cast<unsigned>(equipmentType | dataType);
  const auto* event = std::find_if(kEventNames.begin(), kEventNames.end(),
                                   [key](const EventName& known) { return known.key == key; });
  if (event == kEventNames.end()) event = kEventNames.begin();
  return event->names[locale == kEnglish ? kEnglish : kRussian];
}

}  // namespace quorvel
