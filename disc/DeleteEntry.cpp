#include <algorithm>
#include <unordered_set>

#include "disc/Adfs.h"
#include "disc/DirectoryEdit.h"
#include "disc/FreeMap.h"
#include "disc/Mutation.h"
#include "disc/Ownership.h"
#include "disc/TrackedSector.h"
#include "disc/WalkBudget.h"

namespace sectorbox {
namespace {

using namespace format;

std::int16_t Refuse(Disc& disc, const std::string& message) {
  disc.Host.ShowMessage(message);
  return kStop;
}

bool HasEntries(Disc& disc, std::int32_t DirSector) {
  return (disc.TheDisc.Fetch(SectorOffset(DirSector) + kDirEntries) & kLowBits) != 0;
}

// What an entry of a damaged disc claims beyond the disc's end, or of the map and the root, was
// never its own and doesn't become free.
void ReleaseOwned(Disc& disc, std::int32_t start, std::int32_t sectors) {
  const std::int32_t from = std::max(start, kFirstFreeSector);
  const std::int32_t end = std::min(start + sectors, MapDiscSize(disc));
  if (from < end) ReleaseSectors(disc, from, end - from);
}

// Looks a tree over before anything in it is deleted.
class TreeCheck {
 public:
  explicit TreeCheck(Disc& disc) : disc_(disc) {}

  // False if a directory below lists itself or one above it, or the walk leaves its bounds: such a
  // tree has no bottom to start deleting from, and on the way would take along all that the
  // ancestor holds. False too if one isn't marked as a directory and isn't empty: what would be
  // deleted there are the bytes of something else.
  bool MayBeEmptied(std::int32_t DirSector) {
    if (finished_.count(DirSector) != 0) return true;
    if (!IsDirectory(disc_, DirSector)) return !HasEntries(disc_, DirSector);
    if (!above_.insert(DirSector).second || !budget_.Enter()) return false;
    bool sound = true;
    for (std::int32_t slot = 0; sound && slot < kEntryCount; ++slot) {
      if (EntryIsEmpty(GetEntryName(disc_, DirSector, slot))) break;
      const std::int64_t offset = EntryOffset(DirSector, slot);
      if (!EntryHas(disc_, offset, kAttrDirectory)) continue;
      sound = MayBeEmptied(Fetch24(disc_, offset + kEntrySector));
    }
    budget_.Leave();
    above_.erase(DirSector);
    finished_.insert(DirSector);
    return sound;
  }

 private:
  Disc& disc_;
  WalkBudget budget_;
  std::unordered_set<std::int32_t> above_;
  std::unordered_set<std::int32_t> finished_;
};

std::int16_t DeleteSubtree(Disc& disc, std::int32_t Parent, std::int32_t DirSector,
                           const std::string& Name, bool IgnoreLock, bool DeleteNonEmpty,
                           WalkBudget& budget);

std::int16_t DeleteFirstEntry(Disc& disc, std::int32_t DirSector, const std::string& name,
                              bool IgnoreLock, WalkBudget& budget) {
  const std::int64_t offset = EntryOffset(DirSector, 0);
  if (!EntryHas(disc, offset, kAttrDirectory)) {
    return DeleteEntry(disc, DirSector, name, false, IgnoreLock);
  }
  const std::int32_t start = Fetch24(disc, offset + kEntrySector);
  return DeleteSubtree(disc, DirSector, start, name, IgnoreLock, true, budget);
}

std::int16_t DeleteContents(Disc& disc, const TrackedSector& dir, bool IgnoreLock,
                            WalkBudget& budget) {
  // A directory that overlaps another one may not empty itself: each entry gets one turn.
  for (std::int32_t turn = 0; turn < kEntryCount; ++turn) {
    const std::string name = GetEntryName(disc, dir, 0);
    if (EntryIsEmpty(name)) break;
    if (DeleteFirstEntry(disc, dir, name, IgnoreLock, budget) != kDone) return kStop;
    disc.Host.PumpEvents();
  }
  return kDone;
}

std::int16_t DeleteSubtree(Disc& disc, std::int32_t Parent, std::int32_t DirSector,
                           const std::string& Name, bool IgnoreLock, bool DeleteNonEmpty,
                           WalkBudget& budget) {
  // Deleting what is inside can compact the disc under our feet.
  const TrackedSector parent(disc, Parent);
  const TrackedSector dir(disc, DirSector);
  if (DeleteNonEmpty) {
    if (!budget.Enter()) return Refuse(disc, "Cannot Delete Damaged Directory : " + Name);
    const std::int16_t result = DeleteContents(disc, dir, IgnoreLock, budget);
    budget.Leave();
    if (result != kDone) return result;
  }
  if (parent == -1) return kDone;
  return DeleteEntry(disc, parent, Name, true, IgnoreLock);
}

}  // namespace

std::int16_t DeleteEntry(Disc& disc, std::int32_t DirSector, const std::string& Name, bool IsDir,
                         bool IgnoreLock) {
  const std::int32_t slot = FindEntry(disc, DirSector, Name);
  if (slot < 0) return kDone;
  const std::int64_t offset = EntryOffset(DirSector, slot);
  if (!IgnoreLock && EntryHas(disc, offset, kAttrLocked)) {
    return Refuse(
        disc,
        (IsDir ? "Cannot Delete Locked Directory : " : "Cannot Delete Locked File : ") + Name);
  }
  const std::int32_t start = Fetch24(disc, offset + kEntrySector);
  if (IsDir && HasEntries(disc, start)) {
    return Refuse(disc, "Cannot Delete Non Empty Directory : " + Name);
  }
  BumpSequence(disc, DirSector);
  const std::uint32_t length =
      IsDir ? std::uint32_t{kDirSize} : Fetch32(disc, offset + kEntryLength);
  CloseGap(disc, DirSector, slot);
  // The sector of an empty file that the BBC wrote or moved may be another object's.
  if (length == 0 && SectorIsOwned(disc, start)) return kDone;
  ReleaseOwned(disc, start, SectorsOfLength(length));
  return kDone;
}

std::int16_t DeleteTree(Disc& disc, std::int32_t Parent, std::int32_t DirSector,
                        const std::string& Name, bool IgnoreLock, bool DeleteNonEmpty) {
  if (DeleteNonEmpty && !TreeCheck(disc).MayBeEmptied(DirSector)) {
    return Refuse(disc, "Cannot Delete Damaged Directory : " + Name);
  }
  WalkBudget budget;
  return DeleteSubtree(disc, Parent, DirSector, Name, IgnoreLock, DeleteNonEmpty, budget);
}

}  // namespace sectorbox
