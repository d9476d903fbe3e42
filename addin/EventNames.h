// The names of the external events.
#pragma once

#include "util/Language.h"

namespace quorvel {

// The name of the event that delivers data of an output data type (a code of OutputData.h) from
// equipment of a type (a code of Equipment.h). Any other combination, the human-readable form
// included, gets the name of a barcode event.
const wchar_t* eventNameOf(unsigned equipmentType, unsigned outputDataType, Language language);

}  // namespace quorvel
