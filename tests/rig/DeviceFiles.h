// Entries of the private /dev that exist for one test.
#pragma once

#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <string>
#include <vector>

namespace rig {

class DeviceFiles {
 public:
  DeviceFiles() = default;
  // Creates files with these names in /dev.
  DeviceFiles(std::initializer_list<const char*> names) {
    for (const char* const name : names) std::ofstream(add(name));
  }
  ~DeviceFiles() {
    for (const std::filesystem::path& entry : entries_) std::filesystem::remove_all(entry);
  }
  DeviceFiles(const DeviceFiles&) = delete;
  DeviceFiles& operator=(const DeviceFiles&) = delete;

  // A symbolic link that leads nowhere.
  void addDanglingLink(const std::string& name) {
    std::filesystem::create_symlink("/nowhere/" + name, add(name));
  }

  // A folder with a file in it.
  void addInFolder(const std::string& folder, const std::string& name) {
    std::filesystem::create_directory(add(folder));
    std::ofstream(entries_.back() / name);
  }

 private:
  std::filesystem::path add(const std::string& name) {
    return entries_.emplace_back("/dev/" + name);
  }

  std::vector<std::filesystem::path> entries_;
};

}  // namespace rig
