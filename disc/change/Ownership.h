#pragma once

#include <cstdint>
#include <unordered_map>
#include <utility>
#include <vector>

#include "disc/store/Disc.h"

namespace sectorbox {

// Who owns which sectors of a disc, noted down in one walk when the first question comes and again
// after a compaction. Made for one operation that deletes, and gone with it.
//
// Here every file owns a sector, an empty one too. To the BBC an empty file owns none: the sector
// that its entry states may belong to anything else, and mustn't come free with it.
class Ownership {
 public:
  explicit Ownership(Disc& disc) : disc_(disc) {}

  // The empty file that starts at the sector is about to go. True if a free run, the map, the root,
  // or any other file or directory on the disc holds that sector; also if the directories are too
  // damaged to tell.
  //
  // Sectors of anything else that has gone in the meantime still count as owned. They are in a free
  // run by then, so that the answer is the same.
  [[nodiscard]] bool EmptyFileLeavesOwner(std::int32_t sector);

 private:
  struct Extent {
    std::int32_t Start = 0;
    std::int32_t Sectors = 0;
  };
  class Collector;

  void NoteOwners();
  [[nodiscard]] bool IsFree(std::int32_t sector) const;
  [[nodiscard]] bool IsInExtent(std::int32_t sector) const;

  Disc& disc_;
  bool noted_ = false;
  std::int32_t notedAt_ = 0;  // how many compactions the disc had seen
  bool canBeTold_ = false;
  std::vector<Extent> extents_;  // of all but the empty files, rising and apart
  std::unordered_map<std::int32_t, std::int32_t> emptyFiles_;  // how many start at a sector
};

}  // namespace sectorbox
