#include "disc/Ownership.h"

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
    bool found = false;
    const std::int32_t slots = IsDirectory(disc_, DirSector) ? kEntryCount : 0;
    for (std::int32_t slot = 0; !found && slot < slots; ++slot) {
      if (EntryIsEmpty(GetEntryName(disc_, DirSector, slot))) break;
      const std::int64_t entry = EntryOffset(DirSector, slot);
      const std::int32_t start = Fetch24(disc_, entry + kEntrySector);
      found = EntryHas(disc_, entry, kAttrDirectory)
                  ? IsIn(start)
                  : Covers(start, SectorsOfLength(Fetch32(disc_, entry + kEntryLength)));
    }
    budget_.Leave();
    return found;
  }

 private:
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
