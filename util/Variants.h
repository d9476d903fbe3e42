// Reading and writing the host's variants, and handing texts over to the host.
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

// Set the value and the type code and leave every other byte as it is.
void setBool(tVariant& variant, bool value);
void setInt(tVariant& variant, std::int32_t value);

// The wide string of a variant. Ignores the type code: the caller has checked it.
std::wstring convFromShortWchar(const tVariant& variant);

// The text of a variant that the host passes where a text is expected. A null pointer is the empty
// text, whatever the type code. Nothing when the variant is not a wide string.
std::optional<std::wstring> textOf(const tVariant& variant);

// Reads a signed 32-bit number. Type codes 2, 3, 10 and 14 give the 32-bit word at the start of the
// variant, with the upper bits of a shorter type as they are. 4 and 5 give the double truncated
// toward zero, or INT32_MIN when that does not fit. Any other type: false, `value` untouched.
bool convVarToInt(const tVariant& variant, std::int32_t& value);

// Reads an unsigned 32-bit number. Type codes 2, 3, 10 and 14 to 18 give the 32-bit word at the
// start of the variant. 4 and 5 give the low 32 bits of the double truncated toward zero to 64
// bits, or 0 when that does not fit. Any other type: false, `value` untouched.
bool convVarToDWORD(const tVariant& variant, std::uint32_t& value);

// A copy of `text` in memory that the host owns and frees. Null without a memory manager or when it
// fails. `length`, if given, always receives the number of characters without the terminator.
WCHAR_T* AllocAndConvert(IMemoryManager* memoryManager, const wchar_t* text,
                         std::uint32_t* length = nullptr);

// The same as a wide-string variant. Its pointer is null when AllocAndConvert returns null.
tVariant AllocAndConvertVariant(IMemoryManager* memoryManager, const wchar_t* text);

}  // namespace quorvel
