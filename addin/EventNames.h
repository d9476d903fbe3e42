// The names of the events that the host receives.
#pragma once

namespace quorvel {

// The name of the event for an equipment type and an output data type (codes of AppSettings.h) in a
// language. What is not known counts as a barcode, as text, in Russian; so does every
// human-readable form, a card's too.
const wchar_t* eventNameOf(int equipmentType, int dataType, unsigned locale);

}  // namespace quorvel
