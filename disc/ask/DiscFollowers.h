#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace sectorbox {

// The parts of a front end that show the disc and have to follow it: the panes, the caption, the
// commands that need an open image. A front end without such parts does nothing.
class DiscFollowers {
 public:
  virtual ~DiscFollowers() = default;

  // ImageName or ImageChanged may have changed, and the caption has to show it.
  virtual void RefreshCaption() = 0;
  // Another disc is open: tree and list are filled anew. The root is then the current directory.
  virtual void RebuildTree() = 0;
  // From now on a click on a node refills the list again. During a rebuild it doesn't.
  virtual void SetTreeReady() = 0;
  // A compaction moved directories: each key is a directory's former start sector, each value the
  // new one. Everything that holds sectors of directories, such as the tree's nodes, takes the new
  // ones.
  virtual void DirectoriesMoved(const std::map<std::int32_t, std::int32_t>& moves) = 0;
  // An image is open: the commands for the map, for saving and for the boot option become usable.
  virtual void EnableDiscEntries() = 0;
  // Keeps the path of the image that was opened last, as "Root" of the settings.
  virtual void StoreRoot(const std::string& path) = 0;
};

}  // namespace sectorbox
