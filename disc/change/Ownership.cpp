#include "disc/change/Ownership.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <unordered_set>

#include "disc/catalogue/Adfs.h"
#include "disc/catalogue/WalkBudget.h"

namespace sectorbox {

using namespace format;

// Collects what the directories list.
class Ownership::Walk {
 public:
  explicit Walk(Ownership& owners) : owners_(owners) {}

  // False when a directory lacks its mark or the walk leaves its bounds. A directory that is met
  // again adds nothing.
  bool Directory(std::int32_t DirSector) {
    if (!seen_.insert(DirSector).second) return true;
    if (!budget_.Enter()) return false;
    owners_.extents_.push_back({DirSector, kDirSectors});
    // In one piece: this is asked of the whole disc.
    std::array<std::uint8_t, kDirSize> bytes;
    owners_.disc_.TheDisc.FetchBytes(SectorOffset(DirSector), bytes);
    bool sound = std::equal(kHugo, kHugo + kHugoLength, bytes.begin() + kDirMark);
    for (std::int32_t slot = 0; sound && slot < kEntryCount; ++slot) {
      const std::uint8_t* entry = bytes.data() + kDirEntries + std::ptrdiff_t{slot} * kEntrySize;
      const int first = entry[kEntryName] & kLowBits;
      if (first == 0 || first == '\r') break;
      sound = Entry(entry);
    }
    budget_.Leave();
    return sound;
  }

 private:
  bool Entry(const std::uint8_t* entry) {
    const std::uint8_t* at = entry + kEntrySector;
    const std::int32_t start = at[0] | at[1] << 8 | at[2] << 16;
    if ((entry[kEntryName + kAttrDirectory] & kTopBit) != 0) return Directory(start);
    at = entry + kEntryLength;
    const auto length = static_cast<std::uint32_t>(at[0] | at[1] << 8 | at[2] << 16) |
                        static_cast<std::uint32_t>(at[3]) << 24;
    if (length == 0) {
      ++owners_.emptyFiles_[start];
    } else {
      owners_.extents_.push_back({start, SectorsOfLength(length)});
    }
    return true;
  }

  Ownership& owners_;
  WalkBudget budget_;
  std::unordered_set<std::int32_t> seen_;
};

void Ownership::NoteOwners() {
  noted_ = true;
  notedAt_ = disc_.Compactions;
  extents_.clear();
  emptyFiles_.clear();
  canBeTold_ = Walk(*this).Directory(kRootSector);
  std::sort(extents_.begin(), extents_.end(),
            [](const Extent& a, const Extent& b) { return a.Start < b.Start; });
  // Where objects overlap, what a directory lists may change with another one's bytes.
  std::int64_t end = 0;
  for (const Extent& extent : extents_) {
    if (extent.Start < end) canBeTold_ = false;
    end = std::max(end, std::int64_t{extent.Start} + extent.Sectors);
  }
}

bool Ownership::IsFree(std::int32_t sector) const {
  for (std::size_t i = 0; i < static_cast<std::size_t>(disc_.FreeCount); ++i) {
    if (sector >= disc_.FreeStart[i] && sector - disc_.FreeStart[i] < disc_.FreeLen[i]) return true;
  }
  return false;
}

bool Ownership::IsInExtent(std::int32_t sector) const {
  const auto above =
      std::upper_bound(extents_.begin(), extents_.end(), sector,
                       [](std::int32_t s, const Extent& extent) { return s < extent.Start; });
  if (above == extents_.begin()) return false;
  const Extent& extent = *(above - 1);
  return sector - extent.Start < extent.Sectors;
}

bool Ownership::EmptyFileLeavesOwner(std::int32_t sector) {
  if (!noted_ || notedAt_ != disc_.Compactions) NoteOwners();
  if (!canBeTold_ || sector < kFirstFreeSector) return true;
  const bool another = --emptyFiles_[sector] > 0;
  return another || IsFree(sector) || IsInExtent(sector);
}

}  // namespace sectorbox
