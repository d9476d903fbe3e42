// The driver's one error text.
#pragma once

#include "util/Language.h"

namespace quorvel {

inline constexpr Bilingual kConnectionError = {
    L"Ошибка подключения. Проверьте доступность устройства.",
    L"Connection error. Check device availability."};

}  // namespace quorvel
