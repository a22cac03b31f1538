#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace sectorbox {

// What shows the disc and has to follow it: the panes, the caption, the menu entries. A front end
// without them does nothing.
class DiscFollowers {
 public:
  virtual ~DiscFollowers() = default;

  // ImageName or ImageChanged may have changed where the caption must show it.
  virtual void RefreshCaption() = 0;
  // Another disc is open: tree and list are filled anew. The root is then the current directory.
  virtual void RebuildTree() = 0;
  // A node click may refill the list again, as it may whenever no rebuild is running.
  virtual void SetTreeReady() = 0;
  // A compaction moved directories: each key is a directory's former start sector, each value the
  // new one. Whoever holds sectors of directories (the tree's nodes) takes the new ones.
  virtual void DirectoriesMoved(const std::map<std::int32_t, std::int32_t>& moves) = 0;
  // An image is open, so the entries for the map, saving and the boot option are usable.
  virtual void EnableDiscEntries() = 0;
  // Keep the path of the image opened last ("Root" of the settings).
  virtual void StoreRoot(const std::string& path) = 0;
};

}  // namespace sectorbox
