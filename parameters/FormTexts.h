// The captions, descriptions and choices of the settings form, in both languages.
#pragma once

#include "util/Language.h"

namespace quorvel::form_texts {

inline constexpr Bilingual kPage = {L"Параметры", L"Parameters"};
inline constexpr Bilingual kConnectionGroup = {L"Параметры подключения", L"Connection parameters"};
inline constexpr Bilingual kPort = {L"Порт", L"Port"};
inline constexpr Bilingual kPortKeyboard = {L"Клавиатура", L"Keyboard"};
inline constexpr Bilingual kKeyboardDevice = {L"HID устройство", L"HID device"};
inline constexpr Bilingual kSpeed = {L"Скорость", L"Speed"};
inline constexpr Bilingual kDeviceGroup = {L"Параметры устройства", L"Device parameters"};
inline constexpr Bilingual kSuffix = {L"Суффикс", L"Suffix"};
inline constexpr Bilingual kTimeoutCOM = {L"Таймаут COM-порта (мс)", L"COM-port Timeout (ms)"};
inline constexpr Bilingual kCOMEncoding = {L"Кодировка COM-порта", L"COM port encoding"};
inline constexpr Bilingual kCOMEncodingDescription = {L"Кодировка символов из COM-порта",
                                                      L"Encoding for symbols from COM port"};
inline constexpr Bilingual kGSSymbolKey = {L"Символ GS", L"Symbol GS"};
inline constexpr Bilingual kGSSymbolKeyDescription = {
    L"Для сканеров в клавиатурном режиме. Данная настройка должна соответствовать клавише, "
    L"нажатие которой эмулирует сканер при появлении в считанном штрихкода символа GS(29, 0x1D).",
    L"For scanners in keyboard mode. This settings must match key, which scanner sends for symbol "
    L"GS(29. 0x1D)"};
inline constexpr Bilingual kOutputDataType = {L"Тип выходных данных", L"Output data type"};
inline constexpr Bilingual kOutputString = {L"Строка", L"String"};

}  // namespace quorvel::form_texts
