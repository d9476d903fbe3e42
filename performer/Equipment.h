// The equipment that the driver reads, by the host's codes and names.
#pragma once

#include <array>
#include <string_view>

#include "util/Language.h"

namespace quorvel {

// Equipment type codes.
inline constexpr unsigned kBarcodeScanner = 16;
inline constexpr unsigned kMagneticCardReader = 32;

// What the equipment reads. Events that deliver a scan as text have the same names.
inline constexpr Bilingual kBarcode = {L"Штрихкод", L"Barcode"};
inline constexpr Bilingual kTrackData = {L"ДанныеКарты", L"TrackData"};

// The host's name for a barcode scanner. Equipment names are Russian in every language.
inline constexpr const wchar_t* kBarcodeScannerName = L"СканерШтрихкода";

struct Equipment {
  std::wstring_view name;  // a value of the EquipmentType parameter
  unsigned type;
  Bilingual dataKind;
};

inline constexpr std::array<Equipment, 3> kEquipment = {{
    {kBarcodeScannerName, kBarcodeScanner, kBarcode},
    {L"УстройствоВвода", kBarcodeScanner, kBarcode},
    {L"СчитывательМагнитныхКарт", kMagneticCardReader, kTrackData},
}};

}  // namespace quorvel
