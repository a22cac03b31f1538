#include <algorithm>

#include "disc/catalogue/Adfs.h"
#include "disc/catalogue/Directories.h"
#include "disc/change/Change.h"
#include "disc/change/DirectoryEdit.h"
#include "disc/change/FreeMap.h"
#include "disc/change/Mutation.h"
#include "disc/change/Ownership.h"
#include "disc/store/TrackedSector.h"

namespace sectorbox {
namespace {

using namespace format;

// Makes the sectors of an object free whose entry is gone. On a damaged disc an entry may claim
// sectors behind the disc's end or those of the map and the root: they were never the object's own
// and don't become free. Nor do those that another object claims too.
void ReleaseOwned(Disc& disc, Ownership& owners, std::int32_t dirSector, std::int32_t start,
                  std::int32_t sectors) {
  const std::int32_t from = std::max(start, kFirstFreeSector);
  const std::int32_t end = std::min(start + sectors, MapDiscSize(disc));
  if (from >= end) return;
  const std::int32_t compactions = disc.Compactions;
  for (const FreeRun& run : owners.LeftWithoutOwner(dirSector, from, end)) {
    // A compaction has moved everything together, and so has made the other runs free as well.
    if (disc.Compactions != compactions) return;
    ReleaseSectors(disc, run.Start, run.Length);
  }
}

// Looks a tree over before anything in it is deleted. The tree is too damaged if
// - a directory in it lists itself or a directory above it, or the walk reaches its bounds: such a
//   tree has no lowest directory to start with, and the deletion would also delete everything in
//   the directory above;
// - a directory lacks its mark and isn't empty: its bytes belong to something else.
class TreeCheck : public DirectoryVisitor {
 public:
  Walk Enter(const WalkStep&, const Directory& directory) override {
    return directory.HasMark() || !directory.HasEntries() ? Walk::kOn : Walk::kStop;
  }
  Walk Meet(const WalkStep&, std::int32_t, const Entry&) override { return Walk::kOn; }
  Walk MeetAgain(const WalkStep&, bool above) override { return above ? Walk::kStop : Walk::kOn; }
};

bool MayBeEmptied(Disc& disc, std::int32_t dirSector) {
  TreeCheck check;
  return WalkDirectories(disc, dirSector, check);
}

// Deletes entries of one disc, some of them trees.
class Deletion {
 public:
  Deletion(Disc& disc, bool ignoreLock)
      : disc_(disc), ignoreLock_(ignoreLock), owners_(disc), fileName_(disc.TheDisc.FileName()) {}

  // Nothing happens if the directory at dirSector lists nothing of that name and kind, or, if
  // wanted isn't kAnyStart, only directories that start elsewhere.
  Outcome DeleteOne(std::int32_t dirSector, const std::string& name, bool isDir,
                    std::int32_t wanted);
  // parentSector -1 keeps the directory itself.
  Outcome Tree(std::int32_t parentSector, std::int32_t dirSector, const std::string& name,
               bool deleteNonEmpty);

 private:
  Outcome Contents(const TrackedSector& parent, const TrackedSector& dir, const std::string& name);
  Outcome FirstEntry(std::int32_t dirSector, const Entry& entry);
  // Lets events run. False if the deletion can't go on after them: another disc is open, or the
  // entry name of the directory parent no longer leads to dir, whose sectors may belong to another
  // object now.
  bool GoesOnAfterEvents(const TrackedSector& parent, const TrackedSector& dir,
                         const std::string& name);

  Disc& disc_;
  bool ignoreLock_;
  Ownership owners_;
  const std::string fileName_;
  std::int32_t depth_ = 0;  // of the directory that is being emptied
};

Outcome Deletion::DeleteOne(std::int32_t dirSector, const std::string& name, bool isDir,
                            std::int32_t wanted) {
  EditedDirectory directory(disc_, dirSector);
  const std::int32_t slot = directory.Now.Find(name, wanted);
  if (slot < 0) return Outcome::kDone;
  const Entry entry = directory.Now.At(slot);
  // A file deleted as a directory, or the other way round, would lose its own sectors or those of
  // its contents. A file's sector may be out of date: the caller's list hears of no compaction.
  const bool isAnother = isDir && wanted != kAnyStart && entry.Start() != wanted;
  if (entry.IsDirectory() != isDir || isAnother) return Outcome::kDone;
  if (!ignoreLock_ && entry.IsLocked()) {
    return Refuse(
        disc_,
        (isDir ? "Cannot Delete Locked Directory : " : "Cannot Delete Locked File : ") + name);
  }
  const std::int32_t start = entry.Start();
  if (isDir && !EntryAt(disc_, start, 0).IsUnused()) {
    return Refuse(disc_, "Cannot Delete Non Empty Directory : " + name);
  }
  const std::uint32_t length = isDir ? std::uint32_t{kDirSize} : entry.Length();
  // The sector of an empty file that the BBC wrote or moved may be another object's.
  const bool staysOwned = length == 0 && owners_.EmptyFileLeavesOwner(start);
  (void)directory.Now.BumpSequence();
  directory.Now.Remove(slot);
  directory.Write();
  disc_.ImageChanged = true;
  if (!staysOwned) ReleaseOwned(disc_, owners_, dirSector, start, SectorsOfLength(length));
  return Outcome::kDone;
}

Outcome Deletion::FirstEntry(std::int32_t dirSector, const Entry& entry) {
  if (!entry.IsDirectory()) return DeleteOne(dirSector, entry.Name(), false, entry.Start());
  return Tree(dirSector, entry.Start(), entry.Name(), true);
}

bool Deletion::GoesOnAfterEvents(const TrackedSector& parent, const TrackedSector& dir,
                                 const std::string& name) {
  // Every change to a directory gives it another sequence number.
  const auto sequence = [&] { return SequenceAt(disc_, parent); };
  const std::int32_t compactions = disc_.Compactions;
  const std::uint8_t before = sequence();
  disc_.Host.PumpEvents();
  if (disc_.TheDisc.FileName() != fileName_) return false;
  if (parent == -1 || (disc_.Compactions == compactions && sequence() == before)) return true;
  const Directory listing = DirectoryAt(disc_, parent);
  const std::int32_t slot = listing.Find(name, dir);
  return slot >= 0 && listing.At(slot).Start() == dir;
}

Outcome Deletion::Contents(const TrackedSector& parent, const TrackedSector& dir,
                           const std::string& name) {
  // A directory that overlaps another one may never become empty, so there are only as many turns
  // as there are slots.
  for (std::int32_t turn = 0; turn < kEntryCount; ++turn) {
    const Entry first = EntryAt(disc_, dir, 0);
    if (first.IsEmpty()) break;
    const Outcome outcome = FirstEntry(dir, first);
    if (outcome != Outcome::kDone) return outcome;
    Change::Step(disc_);
    if (!GoesOnAfterEvents(parent, dir, name)) return Outcome::kStopped;
  }
  return Outcome::kDone;
}

Outcome Deletion::Tree(std::int32_t parentSector, std::int32_t dirSector, const std::string& name,
                       bool deleteNonEmpty) {
  // Deleting the contents can compact the disc, which moves directories.
  const TrackedSector parent(disc_, parentSector);
  const TrackedSector dir(disc_, dirSector);
  if (deleteNonEmpty) {
    if (depth_ >= kMaxWalkDepth) return Refuse(disc_, "Cannot Delete Damaged Directory : " + name);
    ++depth_;
    const Outcome outcome = Contents(parent, dir, name);
    --depth_;
    if (outcome != Outcome::kDone) return outcome;
  }
  return parent == -1 ? Outcome::kDone : DeleteOne(parent, name, true, dir);
}

}  // namespace

Outcome DeleteEntry(Disc& disc, std::int32_t dirSector, const std::string& name, bool isDir,
                    bool ignoreLock, std::int32_t start) {
  return InChange(
      disc, [&] { return Deletion(disc, ignoreLock).DeleteOne(dirSector, name, isDir, start); });
}

Outcome DeleteTree(Disc& disc, std::int32_t parent, std::int32_t dirSector, const std::string& name,
                   bool ignoreLock, bool deleteNonEmpty) {
  if (deleteNonEmpty && !MayBeEmptied(disc, dirSector)) {
    return Refuse(disc, "Cannot Delete Damaged Directory : " + name);
  }
  return InChange(disc, [&] {
    return Deletion(disc, ignoreLock).Tree(parent, dirSector, name, deleteNonEmpty);
  });
}

}  // namespace sectorbox
