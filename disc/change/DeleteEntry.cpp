#include <algorithm>
#include <unordered_set>

#include "disc/catalogue/Adfs.h"
#include "disc/catalogue/WalkBudget.h"
#include "disc/change/DirectoryEdit.h"
#include "disc/change/FreeMap.h"
#include "disc/change/Mutation.h"
#include "disc/change/Ownership.h"
#include "disc/store/TrackedSector.h"

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

// Deletes entries of one disc, some of them trees.
class Deletion {
 public:
  Deletion(Disc& disc, bool IgnoreLock)
      : disc_(disc), ignoreLock_(IgnoreLock), owners_(disc), fileName_(disc.TheDisc.FileName()) {}

  std::int16_t Entry(std::int32_t DirSector, const std::string& Name, bool IsDir);
  // Parent -1 keeps the directory itself.
  std::int16_t Tree(std::int32_t Parent, std::int32_t DirSector, const std::string& Name,
                    bool DeleteNonEmpty);

 private:
  std::int16_t Contents(const TrackedSector& parent, const TrackedSector& dir,
                        const std::string& Name);
  std::int16_t FirstEntry(std::int32_t DirSector, const std::string& Name);
  // Lets events run. False where what they did leaves nothing to go on with: another disc is open,
  // of which nobody wanted anything deleted, or entry Name of parent no longer leads to dir, whose
  // sectors may be another object's by now.
  bool GoesOnAfterEvents(const TrackedSector& parent, const TrackedSector& dir,
                         const std::string& Name);

  Disc& disc_;
  bool ignoreLock_;
  Ownership owners_;
  const std::string fileName_;
  WalkBudget budget_;
};

std::int16_t Deletion::Entry(std::int32_t DirSector, const std::string& Name, bool IsDir) {
  const std::int32_t slot = FindEntry(disc_, DirSector, Name);
  if (slot < 0) return kDone;
  const std::int64_t offset = EntryOffset(DirSector, slot);
  if (!ignoreLock_ && EntryHas(disc_, offset, kAttrLocked)) {
    return Refuse(
        disc_,
        (IsDir ? "Cannot Delete Locked Directory : " : "Cannot Delete Locked File : ") + Name);
  }
  const std::int32_t start = Fetch24(disc_, offset + kEntrySector);
  if (IsDir && HasEntries(disc_, start)) {
    return Refuse(disc_, "Cannot Delete Non Empty Directory : " + Name);
  }
  const std::uint32_t length =
      IsDir ? std::uint32_t{kDirSize} : Fetch32(disc_, offset + kEntryLength);
  // The sector of an empty file that the BBC wrote or moved may be another object's.
  const bool staysOwned = length == 0 && owners_.EmptyFileLeavesOwner(start);
  BumpSequence(disc_, DirSector);
  CloseGap(disc_, DirSector, slot);
  if (!staysOwned) ReleaseOwned(disc_, start, SectorsOfLength(length));
  return kDone;
}

std::int16_t Deletion::FirstEntry(std::int32_t DirSector, const std::string& Name) {
  const std::int64_t offset = EntryOffset(DirSector, 0);
  if (!EntryHas(disc_, offset, kAttrDirectory)) return Entry(DirSector, Name, false);
  return Tree(DirSector, Fetch24(disc_, offset + kEntrySector), Name, true);
}

bool Deletion::GoesOnAfterEvents(const TrackedSector& parent, const TrackedSector& dir,
                                 const std::string& Name) {
  // Whatever changes a directory gives it another sequence number.
  const auto sequence = [&] { return disc_.TheDisc.Fetch(SectorOffset(parent) + kDirSequence); };
  const std::int32_t compactions = disc_.Compactions;
  const std::uint8_t before = sequence();
  disc_.Host.PumpEvents();
  if (disc_.TheDisc.FileName() != fileName_) return false;
  if (parent == -1 || (disc_.Compactions == compactions && sequence() == before)) return true;
  return GetEntrySector(disc_, parent, Name) == dir;
}

std::int16_t Deletion::Contents(const TrackedSector& parent, const TrackedSector& dir,
                                const std::string& Name) {
  // A directory that overlaps another one may not empty itself: each entry gets one turn.
  for (std::int32_t turn = 0; turn < kEntryCount; ++turn) {
    const std::string name = GetEntryName(disc_, dir, 0);
    if (EntryIsEmpty(name)) break;
    if (FirstEntry(dir, name) != kDone) return kStop;
    if (!GoesOnAfterEvents(parent, dir, Name)) return kStop;
  }
  return kDone;
}

std::int16_t Deletion::Tree(std::int32_t Parent, std::int32_t DirSector, const std::string& Name,
                            bool DeleteNonEmpty) {
  // Deleting what is inside can compact the disc under our feet.
  const TrackedSector parent(disc_, Parent);
  const TrackedSector dir(disc_, DirSector);
  if (DeleteNonEmpty) {
    if (!budget_.Enter()) return Refuse(disc_, "Cannot Delete Damaged Directory : " + Name);
    const std::int16_t result = Contents(parent, dir, Name);
    budget_.Leave();
    if (result != kDone) return result;
  }
  return parent == -1 ? kDone : Entry(parent, Name, true);
}

}  // namespace

std::int16_t DeleteEntry(Disc& disc, std::int32_t DirSector, const std::string& Name, bool IsDir,
                         bool IgnoreLock) {
  return Deletion(disc, IgnoreLock).Entry(DirSector, Name, IsDir);
}

std::int16_t DeleteTree(Disc& disc, std::int32_t Parent, std::int32_t DirSector,
                        const std::string& Name, bool IgnoreLock, bool DeleteNonEmpty) {
  if (DeleteNonEmpty && !TreeCheck(disc).MayBeEmptied(DirSector)) {
    return Refuse(disc, "Cannot Delete Damaged Directory : " + Name);
  }
  return Deletion(disc, IgnoreLock).Tree(Parent, DirSector, Name, DeleteNonEmpty);
}

}  // namespace sectorbox
