#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "disc/format/SectorSet.h"
#include "disc/store/Disc.h"

namespace sectorbox {

// Knows which sectors of a disc belong to an object. It learns that in one walk over the disc, at
// the first question and at the first question after a compaction. One operation that deletes makes
// it, and it lives as long as that operation. disc outlives it.
//
// Here every file owns a sector, an empty one too. The BBC gives an empty file none: the sector
// that its entry states may belong to any other object, and must not become free with the file.
class Ownership {
 public:
  explicit Ownership(Disc& disc) : disc_(disc) {}

  // The caller is about to delete an empty file that starts at the sector. True if the sector then
  // still belongs to a free run, the map, the root, or another file or directory; also if the disc
  // is too damaged to tell.
  //
  // Objects that were deleted since the walk still count as owners. Their sectors are in a free run
  // by then, so that the answer is the same.
  [[nodiscard]] bool EmptyFileLeavesOwner(std::int32_t sector);

  // The caller has deleted an object whose sectors are [start, end), and its entry is gone from the
  // directory at dirSector. Gives those of them that now belong to nothing, as runs in rising
  // order. On a disc without overlaps (Disc::ObjectsOverlap) these are all of them, and no walk is
  // needed. Else the first question takes a walk, and so does each about sectors that are shared.
  // None if the disc is too damaged to tell: sectors that belong to nothing do no harm.
  [[nodiscard]] std::vector<FreeRun> LeftWithoutOwner(std::int32_t dirSector, std::int32_t start,
                                                      std::int32_t end);

 private:
  struct Extent {
    std::int32_t Start = 0;
    std::int32_t Sectors = 0;
  };
  class Collector;
  class OtherOwners;
  class SharedSectors;

  void NoteOwners();
  void NoteShared();
  [[nodiscard]] bool IsFree(std::int32_t sector) const;
  [[nodiscard]] bool IsInExtent(std::int32_t sector) const;

  Disc& disc_;
  bool noted_ = false;
  std::int32_t notedAt_ = 0;     // how many compactions the disc had seen
  bool canBeTold_ = false;       // the disc is sound enough to tell
  std::vector<Extent> extents_;  // of all but the empty files, in rising order
  // Where empty files start, and for sectors where more than one does, how many more.
  SectorSet emptyFiles_;
  std::map<std::int32_t, std::int32_t> moreEmptyFiles_;

  bool sharedNoted_ = false;
  std::int32_t sharedNotedAt_ = 0;  // how many compactions the disc had seen
  SectorSet shared_;                // sectors that more than one object had then
};

}  // namespace sectorbox
