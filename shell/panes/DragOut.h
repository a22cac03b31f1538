#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "disc/catalogue/Catalogue.h"
#include "disc/store/Disc.h"

// Dragging things out of the panes. The objects on a disc are no host files. So a drag first writes
// the objects to a new folder of the host, with sidecars, and then offers their paths.
namespace sectorbox {

// Below the temporary folder T each drag makes one folder, T + "adfs_temp/temp_N". The next start
// of the program removes these folders. T + "drag.log" has a line for each path of the last drag.
// It stays, so that a user can look up what a drag did.
class DragOut {
 public:
  // tempFolder ends with a separator.
  DragOut(Disc& disc, std::string tempFolder) : disc_(disc), tempFolder_(std::move(tempFolder)) {}

  std::array<std::string, 1001> DragFiles;  // the top-level paths of the current drag
  std::int16_t DragFileCount = 0;
  std::int16_t DragFolderCount = 0;  // next number of a drag folder

  // Gives a path for a new folder, where nothing is yet. Doesn't make the folder.
  [[nodiscard]] std::string temp_root();

  // Each writes its part below a folder of its own, writes the log, and gives the paths to offer,
  // none if there is nothing to drag. HostError if the host can't take the files.
  [[nodiscard]] std::vector<std::string> ExportRows(const std::vector<ListRow>& selected);
  // The directory at that sector. It gets no sidecar of its own: its attributes aren't taken along.
  [[nodiscard]] std::vector<std::string> ExportDirectory(const std::string& name,
                                                         std::int32_t sector);

 private:
  std::string MakeFolder();
  void AddPath(const std::string& path);
  void WriteLog() const;

  Disc& disc_;
  std::string tempFolder_;
};

}  // namespace sectorbox
