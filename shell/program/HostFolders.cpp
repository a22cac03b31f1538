#include "shell/program/HostFolders.h"

#include <filesystem>

namespace sectorbox {

std::string GetTempFolder() {
  std::error_code failed;
  const auto folder = std::filesystem::temp_directory_path(failed);
  if (failed) return {};
  return (folder / "").string();  // an empty name at the end leaves a separator there
}

void RemoveHostTree(const std::string& folder) {
  // Each file is removed by itself, so that one that can't be removed doesn't keep the others.
  namespace fs = std::filesystem;
  std::error_code ignored;
  if (fs::symlink_status(folder, ignored).type() == fs::file_type::directory) {
    for (fs::directory_iterator entry(folder, ignored), end; !ignored && entry != end;
         entry.increment(ignored)) {
      RemoveHostTree(entry->path().string());
    }
  }
  std::error_code kept;
  fs::remove(folder, kept);
}

}  // namespace sectorbox
