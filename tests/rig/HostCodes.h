// The published codes that hosts and components exchange. They are spelled out here, independently
// of the driver's own constants, so that a wrong constant there fails a test.
#pragma once

namespace rig {

// Type codes of a variant.
inline constexpr unsigned kTypeEmpty = 0;
inline constexpr unsigned kTypeInt16 = 2;
inline constexpr unsigned kTypeInt32 = 3;
inline constexpr unsigned kTypeFloat = 4;
inline constexpr unsigned kTypeDouble = 5;
inline constexpr unsigned kTypeError = 10;
inline constexpr unsigned kTypeBool = 11;
inline constexpr unsigned kTypeUint8 = 14;
inline constexpr unsigned kTypeUint16 = 15;
inline constexpr unsigned kTypeUint32 = 16;
inline constexpr unsigned kTypeInt64 = 17;
inline constexpr unsigned kTypeUint64 = 18;
inline constexpr unsigned kTypeText = 22;

// Kinds of equipment.
inline constexpr unsigned kScanner = 16;
inline constexpr unsigned kCardReader = 32;

// Values of the parameter OutputDataType.
inline constexpr unsigned kDataText = 0;
inline constexpr unsigned kDataHumanReadable = 1;
inline constexpr unsigned kDataBase64 = 2;

// The process-wide languages.
inline constexpr unsigned kRussianLocale = 0;
inline constexpr unsigned kEnglishLocale = 1;

}  // namespace rig
