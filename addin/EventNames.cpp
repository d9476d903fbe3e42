#include "addin/EventNames.h"

#include <algorithm>
#include <array>

#include "performer/Equipment.h"
#include "util/OutputData.h"

namespace quorvel {
namespace {

struct EventName {
  unsigned key;  // the codes of the equipment type and the output data type, combined bit by bit
  Bilingual name;
};

constexpr std::array<EventName, 4> kEventNames = {{
    {kBarcodeScanner, kBarcode},
    {kBarcodeScanner | kBase64, {L"ШтрихкодBase64", L"BarcodeBase64"}},
    {kMagneticCardReader, kTrackData},
    {kMagneticCardReader | kBase64, {L"ДанныеКартыBase64", L"TrackDataBase64"}},
}};

}  // namespace

const wchar_t* eventNameOf(unsigned equipmentType, unsigned outputDataType, Language language) {
  const unsigned key = equipmentType | outputDataType;
  const auto* const event =
      std::find_if(kEventNames.begin(), kEventNames.end(),
                   [key](const EventName& known) { return known.key == key; });
  return (event == kEventNames.end() ? kBarcode : event->name).in(language);
}

}  // namespace quorvel
