#include "util/OutputData.h"

#include "util/Base64.h"
#include "util/HumanReadable.h"

namespace quorvel {

std::wstring outputData(const std::wstring& base64, unsigned outputDataType) {
  switch (outputDataType) {
    case kBase64:
      return base64;
    case kHumanReadable:
      return raw2HRS(base642Raw(base64));
    default:
      return base642Raw(base64);
  }
}

}  // namespace quorvel
