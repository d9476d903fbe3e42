#include "tests/rig/ScratchFolder.h"

#include <cerrno>
#include <cstdlib>
#include <string>
#include <system_error>

namespace rig {

ScratchFolder::ScratchFolder() {
  std::string path = std::filesystem::temp_directory_path() / "quorvel-test-XXXXXX";
  if (!mkdtemp(path.data())) throw std::system_error(errno, std::generic_category(), path);
  path_ = path;
}

ScratchFolder::~ScratchFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

}  // namespace rig
