#include "shell/panes/DragOut.h"

#include "disc/exchange/HostExchange.h"
#include "disc/host/HostFile.h"
#include "disc/store/OpenDisc.h"
#include "shell/panes/RowExport.h"

namespace sectorbox {

std::string DragOut::temp_root() {
  std::string folder;
  do {
    folder = tempFolder_ + "adfs_temp/temp_" + std::to_string(DragFolderCount);
    ++DragFolderCount;
  } while (HostPathIsTaken(folder));
  return folder;
}

std::string DragOut::MakeFolder() {
  const std::string root = tempFolder_ + "adfs_temp";
  if (!HostFolderExists(root)) CreateHostFolder(root);
  std::string folder = temp_root();
  CreateHostFolder(folder);
  return folder;
}

void DragOut::AddPath(const std::string& path) {
  DragFiles.at(static_cast<std::size_t>(DragFileCount)) = path;
  ++DragFileCount;
}

// All users of the host share the temporary folder. If somebody has put a symbolic link in the
// log's place, the log replaces the link and isn't written through it.
void DragOut::WriteLog() const {
  const std::string path = tempFolder_ + "drag.log";
  RemoveHostLink(path);
  OutputFile log = CreateExportFile(disc_, path);
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

std::vector<std::string> DragOut::ExportDirectory(const std::string& name, std::int32_t sector) {
  DragFileCount = 0;
  const std::string path = JoinHostPath(MakeFolder(), AdfsToHostName(name));
  AddPath(path);
  DragDropExportFiles(disc_, path, sector, this);
  WriteLog();
  return {path};
}

}  // namespace sectorbox
