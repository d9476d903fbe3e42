// The texts that the user reads in the settings form, in both languages.
#pragma once

#include <string_view>

namespace quorvel {

struct FormText {
  std::wstring_view russian;
  std::wstring_view english;

  constexpr std::wstring_view in(bool inRussian) const { return inRussian ? russian : english; }
};

namespace form_texts {

inline constexpr FormText kPage = {L"Параметры", L"Parameters"};
inline constexpr FormText kConnectionGroup = {L"Параметры подключения", L"Connection parameters"};
inline constexpr FormText kPort = {L"Порт", L"Port"};
inline constexpr FormText kPortKeyboard = {L"Клавиатура", L"Keyboard"};
inline constexpr FormText kKeyboardDevice = {L"HID устройство", L"HID device"};
inline constexpr FormText kSpeed = {L"Скорость", L"Speed"};
inline constexpr FormText kDeviceGroup = {L"Параметры устройства", L"Device parameters"};
inline constexpr FormText kSuffix = {L"Суффикс", L"Suffix"};
inline constexpr FormText kTimeoutCOM = {L"Таймаут COM-порта (мс)", L"COM-port Timeout (ms)"};
inline constexpr FormText kCOMEncoding = {L"Кодировка COM-порта", L"COM port encoding"};
inline constexpr FormText kCOMEncodingDescription = {L"Кодировка символов из COM-порта",
                                                     L"Encoding for symbols from COM port"};
inline constexpr FormText kGSSymbolKey = {L"Символ GS", L"Symbol GS"};
inline constexpr FormText kGSSymbolKeyDescription = {
    L"Для сканеров в клавиатурном режиме. Данная настройка должна соответствовать клавише, "
    L"нажатие которой эмулирует сканер при появлении в считанном штрихкода символа GS(29, 0x1D).",
    L"For scanners in keyboard mode. This settings must match key, which scanner sends for symbol "
    L"GS(29. 0x1D)"};
inline constexpr FormText kOutputDataType = {L"Тип выходных данных", L"Output data type"};
inline constexpr FormText kOutputString = {L"Строка", L"String"};

}  // namespace form_texts

}  // namespace quorvel
