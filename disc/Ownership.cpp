#include "disc/Ownership.h"

#include <algorithm>
#include <array>
#include <unordered_set>

#include "disc/Adfs.h"
#include "disc/WalkBudget.h"

namespace sectorbox {
namespace {

using namespace format;

class OwnerSearch {
 public:
  OwnerSearch(Disc& disc, std::int32_t sector) : disc_(disc), sector_(sector) {}

  bool IsFree() const {
    for (std::size_t i = 0; i < static_cast<std::size_t>(disc_.FreeCount); ++i) {
      if (Covers(disc_.FreeStart[i], disc_.FreeLen[i])) return true;
    }
    return false;
  }

  bool IsIn(std::int32_t DirSector) {
    if (Covers(DirSector, kDirSectors)) return true;
    if (!seen_.insert(DirSector).second) return false;
    if (!budget_.Enter()) return true;
    // In one piece: deleting a tree of empty files asks this of the whole disc for each of them.
    std::array<std::uint8_t, kDirSize> bytes;
    disc_.TheDisc.FetchBytes(SectorOffset(DirSector), bytes);
    bool found = !std::equal(kHugo, kHugo + kHugoLength, bytes.begin() + kDirMark);
    for (std::int32_t slot = 0; !found && slot < kEntryCount; ++slot) {
      const std::uint8_t* entry = bytes.data() + kDirEntries + slot * kEntrySize;
      const int first = entry[kEntryName] & kLowBits;
      if (first == 0 || first == '\r') break;
      found = Holds(entry);
    }
    budget_.Leave();
    return found;
  }

 private:
  bool Holds(const std::uint8_t* entry) {
    const std::uint8_t* at = entry + kEntrySector;
    const std::int32_t start = at[0] | at[1] << 8 | at[2] << 16;
    if ((entry[kEntryName + kAttrDirectory] & kTopBit) != 0) return IsIn(start);
    at = entry + kEntryLength;
    const auto length = static_cast<std::uint32_t>(at[0] | at[1] << 8 | at[2] << 16) |
                        static_cast<std::uint32_t>(at[3]) << 24;
    return Covers(start, SectorsOfLength(length));
  }
  bool Covers(std::int32_t start, std::int32_t sectors) const {
    return sector_ >= start && sector_ - start < sectors;
  }

  Disc& disc_;
  std::int32_t sector_;
  WalkBudget budget_;
  std::unordered_set<std::int32_t> seen_;
};

}  // namespace

bool SectorIsOwned(Disc& disc, std::int32_t sector) {
  OwnerSearch search(disc, sector);
  return sector < kFirstFreeSector || search.IsFree() || search.IsIn(kRootSector);
}

}  // namespace sectorbox
