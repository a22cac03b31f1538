#include "shell/program/HostFolders.h"

#include <filesystem>

namespace sectorbox {

std::string GetTempFolder() {
  std::error_code failed;
  std::string folder = std::filesystem::temp_directory_path(failed).string();
  if (failed) return {};
  if (folder.empty() || folder.back() != '/') folder += '/';
  return folder;
}

void RemoveHostTree(const std::string& Folder) {
  // One that can't be removed doesn't keep its neighbours: each goes by itself.
  namespace fs = std::filesystem;
  std::error_code ignored;
  if (fs::symlink_status(Folder, ignored).type() == fs::file_type::directory) {
    for (fs::directory_iterator entry(Folder, ignored), end; !ignored && entry != end;
         entry.increment(ignored)) {
      RemoveHostTree(entry->path().string());
    }
  }
  std::error_code kept;
  fs::remove(Folder, kept);
}

}  // namespace sectorbox
