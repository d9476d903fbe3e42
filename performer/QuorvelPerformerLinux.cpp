#include "performer/QuorvelPerformerLinux.h"

namespace quorvel {

std::wstring QuorvelPerformerLinux::GetParameters() { return {}; }

}  // namespace quorvel
