#include "util/OutputData.h"

#include "util/Base64.h"
#include "util/HumanReadable.h"
#include "util/ScopedWipe.h"

namespace quorvel {

namespace {

std::wstring humanReadable(const std::wstring& base64) {
  std::wstring text = base642Raw(base64);
  const ScopedWipe wipeText(text);
  return raw2HRS(text);
}

}  // namespace

std::wstring outputData(const std::wstring& base64, unsigned outputDataType) {
  switch (outputDataType) {
    case kBase64:
      return base64;
    case kHumanReadable:
      return humanReadable(base64);
    default:
      return base642Raw(base64);
  }
}

}  // namespace quorvel
