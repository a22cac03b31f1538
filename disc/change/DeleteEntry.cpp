#include <algorithm>

#include "disc/catalogue/Adfs.h"
#include "disc/change/DirectoryEdit.h"
#include "disc/change/FreeMap.h"
#include "disc/change/Mutation.h"
#include "disc/change/Ownership.h"
#include "disc/store/TrackedSector.h"

namespace sectorbox {
namespace {

using namespace format;

// What an entry of a damaged disc claims beyond the disc's end, or of the map and the root, was
// never its own and doesn't become free.
void ReleaseOwned(Disc& disc, std::int32_t start, std::int32_t sectors) {
  const std::int32_t from = std::max(start, kFirstFreeSector);
  const std::int32_t end = std::min(start + sectors, MapDiscSize(disc));
  if (from < end) ReleaseSectors(disc, from, end - from);
}

// Looks a tree over before anything in it is deleted.
//
// A tree may be emptied unless a directory below lists itself or one above it, or the walk leaves
// its bounds: such a tree has no bottom to start deleting from, and on the way would take along all
// that the directory above holds. It may not either if a directory isn't marked as one and isn't
// empty: what would be deleted there are the bytes of something else.
class TreeCheck : public DirectoryVisitor {
 public:
  Walk Enter(const WalkStep&, const Directory& directory) override {
    return directory.HasMark() || !directory.HasEntries() ? Walk::kOn : Walk::kStop;
  }
  Walk Meet(const WalkStep&, std::int32_t, const Entry&) override { return Walk::kOn; }
  Walk MeetAgain(const WalkStep&, bool above) override { return above ? Walk::kStop : Walk::kOn; }
};

bool MayBeEmptied(Disc& disc, std::int32_t DirSector) {
  TreeCheck check;
  return WalkDirectories(disc, DirSector, check);
}

// Deletes entries of one disc, some of them trees.
class Deletion {
 public:
  Deletion(Disc& disc, bool IgnoreLock)
      : disc_(disc), ignoreLock_(IgnoreLock), owners_(disc), fileName_(disc.TheDisc.FileName()) {}

  Outcome DeleteOne(std::int32_t DirSector, const std::string& Name, bool IsDir);
  // Parent -1 keeps the directory itself.
  Outcome Tree(std::int32_t Parent, std::int32_t DirSector, const std::string& Name,
               bool DeleteNonEmpty);

 private:
  Outcome Contents(const TrackedSector& parent, const TrackedSector& dir, const std::string& Name);
  Outcome FirstEntry(std::int32_t DirSector, const Entry& entry);
  // Lets events run. False where what they did leaves nothing to go on with: another disc is open,
  // of which nobody wanted anything deleted, or entry Name of parent no longer leads to dir, whose
  // sectors may be another object's by now.
  bool GoesOnAfterEvents(const TrackedSector& parent, const TrackedSector& dir,
                         const std::string& Name);

  Disc& disc_;
  bool ignoreLock_;
  Ownership owners_;
  const std::string fileName_;
  std::int32_t depth_ = 0;  // of the directory that is being emptied
};

Outcome Deletion::DeleteOne(std::int32_t DirSector, const std::string& Name, bool IsDir) {
  EditedDirectory directory(disc_, DirSector);
  const std::int32_t slot = directory.Now.Find(Name);
  if (slot < 0) return Outcome::kDone;
  const Entry entry = directory.Now.At(slot);
  if (!ignoreLock_ && entry.IsLocked()) {
    return Refuse(
        disc_,
        (IsDir ? "Cannot Delete Locked Directory : " : "Cannot Delete Locked File : ") + Name);
  }
  const std::int32_t start = entry.Start();
  if (IsDir && DirectoryAt(disc_, start).HasEntries()) {
    return Refuse(disc_, "Cannot Delete Non Empty Directory : " + Name);
  }
  const std::uint32_t length = IsDir ? std::uint32_t{kDirSize} : entry.Length();
  // The sector of an empty file that the BBC wrote or moved may be another object's.
  const bool staysOwned = length == 0 && owners_.EmptyFileLeavesOwner(start);
  (void)directory.Now.BumpSequence();
  directory.Now.Remove(slot);
  directory.Write();
  disc_.ImageChanged = true;
  if (!staysOwned) ReleaseOwned(disc_, start, SectorsOfLength(length));
  return Outcome::kDone;
}

Outcome Deletion::FirstEntry(std::int32_t DirSector, const Entry& entry) {
  if (!entry.IsDirectory()) return DeleteOne(DirSector, entry.Name(), false);
  return Tree(DirSector, entry.Start(), entry.Name(), true);
}

bool Deletion::GoesOnAfterEvents(const TrackedSector& parent, const TrackedSector& dir,
                                 const std::string& Name) {
  // Whatever changes a directory gives it another sequence number.
  const auto sequence = [&] { return DirectoryAt(disc_, parent).Sequence(); };
  const std::int32_t compactions = disc_.Compactions;
  const std::uint8_t before = sequence();
  disc_.Host.PumpEvents();
  if (disc_.TheDisc.FileName() != fileName_) return false;
  if (parent == -1 || (disc_.Compactions == compactions && sequence() == before)) return true;
  return GetEntrySector(disc_, parent, Name) == dir;
}

Outcome Deletion::Contents(const TrackedSector& parent, const TrackedSector& dir,
                           const std::string& Name) {
  // A directory that overlaps another one may not empty itself: each entry gets one turn.
  for (std::int32_t turn = 0; turn < kEntryCount; ++turn) {
    const Entry first = DirectoryAt(disc_, dir).At(0);
    if (first.IsEmpty()) break;
    const Outcome outcome = FirstEntry(dir, first);
    if (outcome != Outcome::kDone) return outcome;
    if (!GoesOnAfterEvents(parent, dir, Name)) return Outcome::kStopped;
  }
  return Outcome::kDone;
}

Outcome Deletion::Tree(std::int32_t Parent, std::int32_t DirSector, const std::string& Name,
                       bool DeleteNonEmpty) {
  // Deleting what is inside can compact the disc under our feet.
  const TrackedSector parent(disc_, Parent);
  const TrackedSector dir(disc_, DirSector);
  if (DeleteNonEmpty) {
    if (depth_ >= kMaxWalkDepth) return Refuse(disc_, "Cannot Delete Damaged Directory : " + Name);
    ++depth_;
    const Outcome outcome = Contents(parent, dir, Name);
    --depth_;
    if (outcome != Outcome::kDone) return outcome;
  }
  return parent == -1 ? Outcome::kDone : DeleteOne(parent, Name, true);
}

}  // namespace

Outcome DeleteEntry(Disc& disc, std::int32_t DirSector, const std::string& Name, bool IsDir,
                    bool IgnoreLock) {
  return Deletion(disc, IgnoreLock).DeleteOne(DirSector, Name, IsDir);
}

Outcome DeleteTree(Disc& disc, std::int32_t Parent, std::int32_t DirSector, const std::string& Name,
                   bool IgnoreLock, bool DeleteNonEmpty) {
  if (DeleteNonEmpty && !MayBeEmptied(disc, DirSector)) {
    return Refuse(disc, "Cannot Delete Damaged Directory : " + Name);
  }
  return Deletion(disc, IgnoreLock).Tree(Parent, DirSector, Name, DeleteNonEmpty);
}

}  // namespace sectorbox
