#include "performer/QuorvelPerformerLinux.h"

#include "parameters/LinuxParametersTableBuilder.h"
#include "performer/AppSettings.h"

namespace quorvel {

std::wstring QuorvelPerformerLinux::GetParameters() {
  LinuxParametersTableBuilder builder(AppSettings::language() == Language::kRussian);
  builder.BuildProduct(false);
  return builder.GetProduct();
}

}  // namespace quorvel
