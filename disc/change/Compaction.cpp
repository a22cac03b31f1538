#include "disc/change/Compaction.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <unordered_map>
#include <vector>

#include "disc/ask/BusyPointer.h"
#include "disc/catalogue/Adfs.h"
#include "disc/catalogue/Agreement.h"
#include "disc/catalogue/Directories.h"
#include "disc/change/Change.h"
#include "disc/change/DirectoryEdit.h"
#include "disc/change/FreeMap.h"

namespace sectorbox {
namespace {

using namespace format;

// One file or directory.
struct ObjectRecord {
  std::int32_t Parent = 0;  // sector of the directory that lists the object
  std::int32_t Start = 0;
  std::int32_t Sectors = 0;
  // The parent that a directory names at its old place, if another one was written there meanwhile;
  // else -1.
  std::int32_t OldParent = -1;
  std::int8_t Slot = -1;  // of the object's entry in Parent
  bool IsFile = false;
  bool IsEmpty = false;  // a file of no bytes; the BBC gives it no sector
  bool HasMoved = false;
};
static_assert(sizeof(ObjectRecord) == 20, "there may be two million of them");

// Moving objects into a hole of this share of Disc::StepBytes saves more than the end of a part
// costs.
constexpr std::size_t kLargeHole = 16;
// Objects that move together are copied when they are at least this many bytes.
constexpr std::int32_t kMoveSize = 1048576;

// Collects the objects. The visitor ends the walk if the walk comes to a directory a second time,
// to a directory without its mark, or to its bounds. Nobody can tell what a directory without its
// mark listed, and those objects would be written over. It also ends the walk if the objects need
// more sectors than the disc has.
//
// Each object is known by the slot that lists it. What a directory says of its own name and parent
// doesn't count, nor does it matter that two entries have one name: on a damaged disc an entry that
// is looked for by these may be another one.
class Collector : public DirectoryVisitor {
 public:
  explicit Collector(std::int32_t discSize) : room_(discSize - kRootSector) {}

  std::vector<ObjectRecord> Objects;

  Walk Enter(const WalkStep& at, const Directory& directory) override {
    room_ -= kDirSectors;
    if (!directory.HasMark() || !HasRoom()) return Walk::kStop;
    // The root comes first, and PlanMoves takes it away again.
    Objects.push_back({.Parent = at.Parent == nullptr ? kRootSector : at.Parent->Sector,
                       .Start = at.Sector,
                       .Sectors = kDirSectors,
                       .Slot = static_cast<std::int8_t>(at.Slot)});
    return Walk::kOn;
  }

  Walk Meet(const WalkStep& at, std::int32_t slot, const Entry& entry) override {
    if (entry.IsDirectory()) return Walk::kOn;
    const bool isEmpty = entry.Length() == 0;
    if (!isEmpty) room_ -= entry.Sectors();
    if (!HasRoom()) return Walk::kStop;
    Objects.push_back({.Parent = at.Sector,
                       .Start = entry.Start(),
                       .Sectors = entry.Sectors(),
                       .Slot = static_cast<std::int8_t>(slot),
                       .IsFile = true,
                       .IsEmpty = isEmpty});
    return Walk::kOn;
  }

  Walk MeetAgain(const WalkStep&, bool) override { return Walk::kStop; }

 private:
  // False if the objects need more sectors than the disc has, so that some of them overlap.
  bool HasRoom() const {
    return room_ >= 0 && Objects.size() < static_cast<std::size_t>(kMaxObjects);
  }

  std::int64_t room_;  // sectors that the objects so far leave
};

// Here an empty file owns a sector. The BBC gives it none and may have left it at a place that
// belongs to another object. Such a file owns nothing that could be moved; only its entry changes.
// The objects stand in the order of their places; of those that start at one place, empty files
// come last.
void DisownShared(std::vector<ObjectRecord>& objects, std::int32_t discSize) {
  std::int64_t end = kFirstFreeSector;
  for (ObjectRecord& object : objects) {
    const bool hasOwn = object.Start >= end && object.Start < discSize;
    if (object.IsEmpty && !hasOwn) object.Sectors = 0;
    end = std::max(end, std::int64_t{object.Start} + object.Sectors);
  }
}

// True if the objects overlap each other, the map or the root, or need more room than the disc has.
// Moving such objects down one by one would write over what hasn't been moved yet.
bool WouldBeLost(const std::vector<ObjectRecord>& objects, std::int32_t discSize) {
  std::int64_t end = kFirstFreeSector;
  std::int64_t used = kFirstFreeSector;
  for (const ObjectRecord& object : objects) {
    if (object.Sectors == 0) continue;
    if (object.Start < end) return true;
    end = std::int64_t{object.Start} + object.Sectors;
    used += object.Sectors;
  }
  return used > discSize;
}

// The objects in the order of their places, without the root; none if the disc is too damaged.
std::optional<std::vector<ObjectRecord>> PlanMoves(Disc& disc) {
  Collector collector(MapDiscSize(disc));
  if (!WalkDirectories(disc, kRootSector, collector)) return std::nullopt;
  std::vector<ObjectRecord> objects = std::move(collector.Objects);
  objects.erase(objects.begin());
  std::sort(objects.begin(), objects.end(), [](const ObjectRecord& a, const ObjectRecord& b) {
    return a.Start != b.Start ? a.Start < b.Start : a.IsEmpty < b.IsEmpty;
  });
  DisownShared(objects, MapDiscSize(disc));
  if (WouldBeLost(objects, MapDiscSize(disc))) return std::nullopt;
  return objects;
}

// Sectors that move down together.
struct MovingRun {
  std::int32_t From = 0;
  std::int32_t To = 0;
  std::int32_t Sectors = 0;
};

// Copies from the start of the run to its end, so that the run may also move by less than its own
// length.
void MoveSectors(Disc& disc, const MovingRun& run, std::vector<std::uint8_t>& part) {
  const std::int64_t length = SectorOffset(run.Sectors);
  part.resize(static_cast<std::size_t>(kMoveSize));
  for (std::int64_t done = 0; done < length; done += kMoveSize) {
    const auto size = static_cast<std::size_t>(std::min<std::int64_t>(kMoveSize, length - done));
    const auto bytes = std::span(part).first(size);
    disc.TheDisc.FetchBytes(SectorOffset(run.From) + done, bytes);
    disc.TheDisc.StoreBytes(SectorOffset(run.To) + done, bytes);
  }
}

// Moves the objects in the order of their places. Neighbours are moved together. Their entries are
// written later, many at a time, directory by directory. The disc then holds the same bytes as if
// each object had been moved alone and its entry written at once.
//
// A long compaction is made safe in parts. At the end of each part the disc is sound: every entry
// and every directory is right, and the map has one hole where the objects have moved away.
class Mover {
 public:
  Mover(Disc& disc, std::vector<ObjectRecord>& objects)
      : disc_(disc), objects_(objects), formerMap_(ReadMap(disc)), formerRuns_(FreeRuns(disc)) {
    for (ObjectRecord& object : objects_) children_[object.Parent].push_back(&object);
  }

  // Moves everything, and writes the map.
  void MoveAllDown() {
    std::int32_t next = kFirstFreeSector;
    for (ObjectRecord& object : objects_) {
      if (object.Start != next) {
        // An object without sectors of its own may lie where others have moved away.
        if (object.Sectors > 0 && PartShouldEnd(object, next)) EndPart(next, object.Start);
        if (hole_.Length == 0) hole_ = {next, object.Start - next};
        Move(object, next);
      }
      next += object.Sectors;
    }
    WriteEntries();
    WriteParents();
    WriteOneRun(next);
    ReadFreeMap(disc_);
    disc_.ImageChanged = true;
    ++disc_.Compactions;
    NoteMoves();
  }

 private:
  void Move(ObjectRecord& object, std::int32_t to) {
    const std::int32_t old = object.Start;
    // So that StepIsDue sees what has been moved.
    if (SectorOffset(run_.Sectors) >= kMoveSize) MoveRun();
    // Objects that the directory lists may have moved already. Their entries are written now, so
    // that they move with the directory.
    if (!object.IsFile) WriteEntriesOf(old);
    AddToRun(object, to);
    if (object.OldParent >= 0) {
      // What is left behind is what always was there.
      MoveRun();
      WriteParent(old, object.OldParent);
    }
    object.Start = to;
    object.HasMoved = true;
    waiting_[object.Parent].push_back(&object);
    if (object.IsFile) return;
    moves_[old] = to;
    const auto children = children_.find(old);
    if (children == children_.end()) return;
    for (ObjectRecord* child : children->second) {
      child->Parent = to;
      if (!child->IsFile) orphans_.push_back(child);
    }
  }

  // A part ends when it holds much. It also ends when the hole that it began with is used up, if
  // that was large: what is moved into free sectors needn't be held.
  bool PartShouldEnd(const ObjectRecord& object, std::int32_t to) const {
    if (Change::StepIsDue(disc_)) return true;
    const bool isUsedUp = to > hole_.Start && to + object.Sectors > hole_.Start + hole_.Length;
    const auto size = static_cast<std::size_t>(SectorOffset(hole_.Length));
    return size >= disc_.StepBytes / kLargeHole && isUsedUp && Change::MayStep(disc_);
  }

  // Makes safe what has been moved so far. The objects from here on lie where they lay.
  void EndPart(std::int32_t next, std::int32_t firstUnmoved) {
    std::vector<FreeRun> runs = {{next, firstUnmoved - next}};
    for (const FreeRun& run : formerRuns_) {
      if (run.Start >= firstUnmoved) runs.push_back(run);
    }
    // Sectors that belonged to nothing may have become one run more than the map has room for.
    if (runs.size() > static_cast<std::size_t>(kMapEntries)) return;
    WriteEntries();
    WriteNewParents();
    KeepFreeRuns(disc_, runs);
    WriteFreeMap(disc_);
    mapWasWritten_ = true;
    disc_.ImageChanged = true;
    NoteMoves();
    Change::StepNow(disc_);
    hole_ = runs.front();
  }

  void WriteOneRun(std::int32_t start) {
    MapSectors map = formerMap_;
    // What stands behind the end pointer is what stood there before, also if the map of a part was
    // longer.
    if (mapWasWritten_) disc_.TheDisc.StoreBytes(0, map.Raw());
    const std::array<FreeRun, 1> runs = {{{start, map.DiscSize() - start}}};
    map.SetRuns(runs);
    map.UpdateChecksums();
    WriteMap(disc_, map);
  }

  // Writes the parents of the directories whose parents have moved in this part. Keeps the old ones
  // of those that haven't moved themselves yet.
  void WriteNewParents() {
    for (ObjectRecord* object : orphans_) {
      if (!object->HasMoved && object->OldParent < 0) {
        object->OldParent = DirectoryAt(disc_, object->Start).Parent();
      }
      WriteParent(object->Start, object->Parent);
    }
    orphans_.clear();
  }

  void WriteParents() {
    for (const ObjectRecord& object : objects_) {
      if (!object.IsFile) WriteParent(object.Start, object.Parent);
    }
  }

  void WriteParent(std::int32_t directory, std::int32_t parent) {
    Directory changed(Directory::Bytes{});
    changed.SetParent(parent);
    WriteDirectory(disc_, directory, changed);
  }

  // The tracked sectors follow the directories at once. The panes hear of the moves at the end of
  // the change.
  void NoteMoves() {
    if (moves_.empty()) return;
    for (std::int32_t* held : disc_.TrackedSectors) {
      const auto move = moves_.find(*held);
      if (move != moves_.end()) *held = move->second;
    }
    disc_.UntoldMoves.push_back(std::exchange(moves_, {}));
  }

  void AddToRun(const ObjectRecord& object, std::int32_t to) {
    const bool follows = object.Start - run_.From == run_.Sectors && to - run_.To == run_.Sectors;
    if (!follows) {
      MoveRun();
      run_ = {object.Start, to, 0};
    }
    run_.Sectors += object.Sectors;
  }

  void MoveRun() {
    MoveSectors(disc_, run_, part_);
    run_.Sectors = 0;
  }

  // Writes the new places of all objects that have moved into their entries.
  void WriteEntries() {
    MoveRun();
    for (const auto& [directory, objects] : waiting_) WriteEntries(directory, objects);
    waiting_.clear();
  }

  void WriteEntriesOf(std::int32_t directory) {
    const auto waiting = waiting_.find(directory);
    if (waiting == waiting_.end()) return;
    MoveRun();
    WriteEntries(directory, waiting->second);
    waiting_.erase(waiting);
  }

  // Only the start sectors are written, so nothing of the directory has to be read for them.
  void WriteEntries(std::int32_t sector, const std::vector<const ObjectRecord*>& objects) {
    Directory changed(Directory::Bytes{});
    for (const ObjectRecord* object : objects) changed.SetStart(object->Slot, object->Start);
    WriteDirectory(disc_, sector, changed);
  }

  Disc& disc_;
  std::vector<ObjectRecord>& objects_;
  std::unordered_map<std::int32_t, std::vector<ObjectRecord*>> children_;
  std::map<std::int32_t, std::int32_t> moves_;
  // Directories whose parents have moved since the last part.
  std::vector<ObjectRecord*> orphans_;
  // The hole that this part began with; of no length before the first move.
  FreeRun hole_;
  MovingRun run_;
  // Moved objects whose entries aren't written yet, by the present sector of the directory that
  // lists them.
  std::map<std::int32_t, std::vector<const ObjectRecord*>> waiting_;
  std::vector<std::uint8_t> part_;
  // The map and the free list before the compaction.
  const MapSectors formerMap_;
  const std::vector<FreeRun> formerRuns_;
  bool mapWasWritten_ = false;
};

// False if the disc is too damaged; nothing has changed then.
bool TryToCompact(Disc& disc) {
  disc.Host.SetStatus("Compacting Disc", true);
  const BusyPointer busy(disc.Host);
  auto objects = PlanMoves(disc);
  if (!objects) return false;
  Mover(disc, *objects).MoveAllDown();
  return true;
}

}  // namespace

Outcome CompactDisc(Disc& disc) {
  // Where there is no root, compaction has its own words for it.
  if (FindContradiction(disc) == kNoRoot) return Refuse(disc, kCannotCompactMessage);
  return InChange(disc, [&] {
    return TryToCompact(disc) ? Outcome::kDone : Refuse(disc, kCannotCompactMessage);
  });
}

void CompactAfterRelease(Disc& disc) {
  if (!TryToCompact(disc)) disc.Host.Note(kCannotCompactMessage);
}

}  // namespace sectorbox
