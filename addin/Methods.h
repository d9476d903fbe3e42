// The driver's methods: one table of names and argument counts for everyone who asks.
#pragma once

#include <array>
#include <string_view>

namespace quorvel {

enum MethodLanguage : long { kEnglishNames = 0, kRussianNames = 1, kMethodLanguages = 2 };

struct Method {
  std::array<const wchar_t*, kMethodLanguages> names;  // by MethodLanguage
  long parameters;
};

// By method number.
inline constexpr std::array<Method, 10> kMethods = {{
    {{L"GetVersion", L"ПолучитьНомерВерсии"}, 0},
    {{L"GetDescription", L"ПолучитьОписание"}, 7},
    {{L"GetLastError", L"ПолучитьОшибку"}, 1},
    {{L"GetParameters", L"ПолучитьПараметры"}, 1},
    {{L"SetParameter", L"УстановитьПараметр"}, 2},
    {{L"Open", L"Подключить"}, 1},
    {{L"Close", L"Отключить"}, 1},
    {{L"DeviceTest", L"ТестУстройства"}, 2},
    {{L"GetAdditionalActions", L"ПолучитьДополнительныеДействия"}, 1},
    {{L"DoAdditionalAction", L"ВыполнитьДополнительноеДействие"}, 1},
}};

// The method of a number, null for a number that has none.
const Method* methodOf(long number);

// The number of the method with exactly this name, in English or else in Russian; -1 when there is
// none.
long findMethod(std::wstring_view name);

}  // namespace quorvel
