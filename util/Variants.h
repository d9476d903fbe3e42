// Reading the host's variants and handing texts over to the host.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "host/IMemoryManager.h"
#include "host/Variant.h"
#include "util/WideStrings.h"

namespace quorvel {

// A variant whose every byte is zero: type code VTYPE_EMPTY.
tVariant emptyVariant();

// Write the value and its type code and leave every other byte as it is.
void setBool(tVariant& variant, bool value);
void setInt(tVariant& variant, std::int32_t value);

// The wide string of a variant whose type the caller has looked at: this reads the pointer and the
// length whatever the type code says.
std::wstring convFromShortWchar(const tVariant& variant);

// The text of a variant that a host passes where a text is expected. A null pointer is the empty
// text, whatever the type; any other variant that is no wide string has none.
std::optional<std::wstring> textOf(const tVariant& variant);

// The variant as a signed 32-bit number: the 32-bit word at its start for type codes 2, 3, 10 and
// 14 (of a shorter type the upper bits are whatever the word holds), a double truncated toward zero
// for 4 and 5 (INT32_MIN where that has no 32-bit value). False and `value` untouched for others.
bool convVarToInt(const tVariant& variant, std::int32_t& value);

// The variant as an unsigned 32-bit number: the 32-bit word at its start for type codes 2, 3, 10
// and 14 to 18, for 4 and 5 the low 32 bits of a double truncated toward zero to 64 bits (0 where
// that has no 64-bit value). False and `value` untouched for others.
bool convVarToDWORD(const tVariant& variant, std::uint32_t& value);

// A copy of `text` in memory of the host, which owns it from then on. Null without a memory manager
// or when it gives no memory. `length`, if given, always receives the characters of `text` without
// the terminator.
WCHAR_T* AllocAndConvert(IMemoryManager* memoryManager, const wchar_t* text,
                         std::uint32_t* length = nullptr);

// The same as a wide-string variant. Its pointer is null where AllocAndConvert gives null.
tVariant AllocAndConvertVariant(IMemoryManager* memoryManager, const wchar_t* text);

}  // namespace quorvel
