#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "disc/catalogue/Catalogue.h"
#include "disc/store/Disc.h"

// Dragging things out of the panes. Nothing on a disc is a host file, so a drag writes what it
// takes to a new folder of the host, with sidecars, before any path is offered to anybody.
namespace sectorbox {

// Below the temporary folder T: T + "adfs_temp/temp_N", one folder a drag, removed at the next
// start of the program and not before; and T + "drag.log", a line for each path of the last drag,
// which stays for whoever wonders what a drag did.
class DragOut {
 public:
  explicit DragOut(Disc& disc) : disc_(disc) {}

  std::array<std::string, 1001> DragFiles;  // the top-level paths of the current drag
  std::int16_t DragFileCount = 0;
  std::int16_t DragFolderCount = 0;  // next number of a drag folder

  // A folder path that nothing has yet. Doesn't make the folder.
  std::string temp_root();

  // Each writes its part below a folder of its own and the log, and gives the paths to offer, none
  // if there is nothing to drag. HostError if the host can't take the files.
  std::vector<std::string> ExportRows(const std::vector<ListRow>& selected);
  // The directory at Sector, without a sidecar of its own: its attributes don't travel.
  std::vector<std::string> ExportDirectory(const std::string& Name, std::int32_t Sector);

 private:
  std::string MakeFolder();
  void AddPath(const std::string& path);
  void WriteLog() const;

  Disc& disc_;
};

}  // namespace sectorbox
