#include "shell/panes/DragOut.h"

#include <filesystem>

#include "disc/exchange/HostExchange.h"
#include "disc/host/HostFile.h"
#include "shell/panes/RowExport.h"
#include "shell/program/HostFolders.h"

namespace sectorbox {
namespace {

bool AnythingThere(const std::string& path) {
  std::error_code failed;
  return std::filesystem::exists(std::filesystem::symlink_status(path, failed));
}

}  // namespace

std::string DragOut::temp_root() {
  std::string folder;
  do {
    folder = GetTempFolder() + "adfs_temp/temp_" + std::to_string(DragFolderCount);
    ++DragFolderCount;
  } while (AnythingThere(folder));
  return folder;
}

std::string DragOut::MakeFolder() {
  const std::string root = GetTempFolder() + "adfs_temp";
  if (!HostFolderExists(root)) CreateHostFolder(root);
  std::string folder = temp_root();
  CreateHostFolder(folder);
  return folder;
}

void DragOut::AddPath(const std::string& path) {
  DragFiles.at(static_cast<std::size_t>(DragFileCount)) = path;
  ++DragFileCount;
}

// The temporary folder is everybody's: a link that somebody put where the log goes is replaced, not
// written through.
void DragOut::WriteLog() const {
  const std::string path = GetTempFolder() + "drag.log";
  std::error_code ignored;
  if (std::filesystem::is_symlink(std::filesystem::symlink_status(path, ignored))) {
    std::filesystem::remove(path, ignored);
  }
  OutputFile log = CreateOutputFile(path);
  for (std::int16_t i = 0; i < DragFileCount; ++i) {
    log.Write(DragFiles[static_cast<std::size_t>(i)] + "\n");
  }
  log.Close();
}

std::vector<std::string> DragOut::ExportRows(const std::vector<ListRow>& selected) {
  DragFileCount = 0;
  std::vector<std::string> offered;
  const std::string folder = MakeFolder();
  HostNamesOfFolder names;
  for (const ListRow& row : selected) {
    const std::string path = JoinHostPath(folder, names.Take(row.Name()));
    AddPath(path);
    AddPath(path + ".INF");
    ExportRow(disc_, row, path);
    offered.push_back(path);
    offered.push_back(path + ".INF");
  }
  WriteLog();
  return offered;
}

std::vector<std::string> DragOut::ExportDirectory(const std::string& Name, std::int32_t Sector) {
  DragFileCount = 0;
  const std::string path = JoinHostPath(MakeFolder(), AdfsToHostName(Name));
  AddPath(path);
  DragDropExportFiles(disc_, path, Sector, this);
  WriteLog();
  return {path};
}

}  // namespace sectorbox
