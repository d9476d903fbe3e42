#include "addin/Methods.h"

#include <algorithm>

namespace quorvel {
namespace {

long findName(std::wstring_view name, MethodLanguage language) {
  const auto method = std::find_if(kMethods.begin(), kMethods.end(), [&](const Method& candidate) {
    return name == candidate.names[language];
  });
  return method == kMethods.end() ? -1 : static_cast<long>(method - kMethods.begin());
}

}  // namespace

const Method* methodOf(long number) {
  return number >= 0 && number < static_cast<long>(kMethods.size())
             ? &kMethods[static_cast<std::size_t>(number)]
             : nullptr;
}

long findMethod(std::wstring_view name) {
  const long english = findName(name, kEnglishNames);
  return english >= 0 ? english : findName(name, kRussianNames);
}

}  // namespace quorvel
