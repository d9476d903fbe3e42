// A temporary folder.
#pragma once

#include <filesystem>

namespace rig {

// Removed with its contents by the destructor.
class ScratchFolder {
 public:
  // Throws std::system_error.
  ScratchFolder();
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

}  // namespace rig
