#include "disc/change/Compaction.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "disc/ask/BusyPointer.h"
#include "disc/catalogue/Adfs.h"
#include "disc/catalogue/Directories.h"
#include "disc/format/Names.h"

namespace sectorbox {
namespace {

using namespace format;

// One file or directory.
struct ObjectRecord {
  std::string Name;
  bool IsFile = false;
  std::int32_t Parent = 0;  // sector of the directory that holds the object's entry
  std::int32_t Start = 0;
  std::int32_t Sectors = 0;
  bool IsEmpty = false;    // a file of no bytes; the BBC gives it no sector
  std::int32_t Slot = -1;  // of the object's entry in Parent; -1 if it has to be looked for
};

// The largest disc has about this many sectors, so it can't hold more objects. A damaged disc may
// seem to.
constexpr std::size_t kMaxObjects = 0x210000;
// At least this many bytes are moved before the entries of what was moved are written.
constexpr std::int32_t kMoveSize = 1048576;

// Collects the objects. The visitor ends the walk if the walk comes to a directory a second time,
// to a directory without its mark, or to its bounds. Nobody can tell what a directory without its
// mark listed, and those objects would be written over.
class Collector : public DirectoryVisitor {
 public:
  std::vector<ObjectRecord> Objects;

  Walk Enter(const WalkStep& at, const Directory& directory) override {
    if (!directory.HasMark() || Objects.size() + kEntryCount > kMaxObjects) return Walk::kStop;
    // A directory's entry is looked for by the name and the parent that the directory itself holds.
    // On a damaged disc these may differ from its entry.
    ObjectRecord object{
        NameOf(at, directory), false, directory.Parent(), at.Sector, kDirSectors, false, -1};
    const bool listedRight = at.Listed != nullptr && object.Parent == at.Parent->Sector &&
                             FoldName(object.Name) == FoldName(at.Listed->Name());
    if (listedRight) object.Slot = FirstSlotOf(at.Listed->Name());
    Objects.push_back(std::move(object));
    names_.emplace_back();
    return Walk::kOn;
  }

  Walk Meet(const WalkStep& at, std::int32_t, const Entry& entry) override {
    names_.back().push_back(FoldName(entry.Name()));
    if (entry.IsDirectory()) return Walk::kOn;
    Objects.push_back({entry.Name(), true, at.Sector, entry.Start(), entry.Sectors(),
                       entry.Length() == 0, FirstSlotOf(entry.Name())});
    return Walk::kOn;
  }

  Walk MeetAgain(const WalkStep&, bool) override { return Walk::kStop; }
  void Leave(const WalkStep&) override { names_.pop_back(); }

 private:
  static std::string NameOf(const WalkStep& at, const Directory& directory) {
    const std::string name = directory.Name();
    return name.empty() && at.Sector == kRootSector ? "$" : name;
  }

  // A search by name finds the first of two entries that have one name.
  std::int32_t FirstSlotOf(const std::string& name) const {
    const std::vector<std::string>& names = names_.back();
    return static_cast<std::int32_t>(std::find(names.begin(), names.end(), FoldName(name)) -
                                     names.begin());
  }

  // The folded names met so far in each directory that the walk is in, the top one first.
  std::vector<std::vector<std::string>> names_;
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
  Collector collector;
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
// An object's old place keeps its bytes until other objects are moved over it. The entries are
// written before that happens, so that a program that dies in between loses no object. But if the
// free space below is so small that each entry would have to be written by itself, the entries of
// up to kMoveSize bytes of objects wait together, and these objects can be lost.
class Mover {
 public:
  Mover(Disc& disc, std::vector<ObjectRecord>& objects) : disc_(disc), objects_(objects) {
    std::unordered_set<std::int32_t> directories = {kRootSector};
    for (ObjectRecord& object : objects_) {
      children_[object.Parent].push_back(&object);
      if (!object.IsFile) directories.insert(object.Start);
    }
    // A damaged directory may name a sector inside a file as its parent. What is found there
    // depends on how far the move has come, so then each entry is written at once.
    oneByOne_ = !std::all_of(children_.begin(), children_.end(), [&](const auto& children) {
      return directories.count(children.first) != 0;
    });
  }

  // Moves everything, and gives the first sector behind all objects.
  std::int32_t MoveAllDown() {
    std::int32_t next = kFirstFreeSector;
    for (ObjectRecord& object : objects_) {
      if (object.Start != next) Move(object, next);
      next += object.Sectors;
    }
    WriteEntries();
    for (const ObjectRecord& object : objects_) {
      if (!object.IsFile) WriteParent(object);
    }
    return next;
  }

  const std::map<std::int32_t, std::int32_t>& Moves() const { return moves_; }

 private:
  void Move(ObjectRecord& object, std::int32_t to) {
    const std::int32_t old = object.Start;
    if (waiting_.empty()) {
      keptUpTo_ = old;
      movedAtOnce_ = 0;
    } else if (to + object.Sectors > keptUpTo_ &&
               SectorOffset(movedAtOnce_ + object.Sectors) > kMoveSize) {
      WriteEntries();
      keptUpTo_ = old;
      movedAtOnce_ = 0;
    }
    // Objects that the directory lists may have moved already. Their entries are written now, so
    // that they move with the directory.
    if (!object.IsFile) WriteEntriesOf(old);
    AddToRun(object, to);
    movedAtOnce_ += object.Sectors;
    object.Start = to;
    waiting_[object.Parent].push_back(&object);
    if (oneByOne_) WriteEntries();
    if (object.IsFile) return;
    moves_[old] = to;
    const auto children = children_.find(old);
    if (children == children_.end()) return;
    for (ObjectRecord* child : children->second) child->Parent = to;
  }

  void WriteParent(const ObjectRecord& object) {
    Directory changed(Directory::Bytes{});
    changed.SetParent(object.Parent);
    WriteDirectory(disc_, object.Start, changed);
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

  // Writes the new places of all objects that have moved into their entries, down to the medium.
  void WriteEntries() {
    MoveRun();
    for (const auto& [directory, objects] : waiting_) WriteEntries(directory, objects);
    waiting_.clear();
    disc_.TheDisc.WriteBack();
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
    for (const ObjectRecord* object : objects) {
      // A directory whose own name or parent disagrees with its entry isn't found, and that entry
      // goes on pointing at the old place.
      const std::int32_t slot =
          object->Slot >= 0 ? object->Slot : FindEntry(disc_, sector, object->Name);
      if (slot >= 0) changed.SetStart(slot, object->Start);
    }
    WriteDirectory(disc_, sector, changed);
  }

  Disc& disc_;
  std::vector<ObjectRecord>& objects_;
  std::unordered_map<std::int32_t, std::vector<ObjectRecord*>> children_;
  std::map<std::int32_t, std::int32_t> moves_;
  MovingRun run_;
  // Moved objects whose entries aren't written yet, by the present sector of the directory that
  // lists them. The first of their old places is at keptUpTo_; together these objects have
  // movedAtOnce_ sectors.
  std::map<std::int32_t, std::vector<const ObjectRecord*>> waiting_;
  std::int32_t keptUpTo_ = 0;
  std::int32_t movedAtOnce_ = 0;
  std::vector<std::uint8_t> part_;
  bool oneByOne_ = false;
};

void WriteOneRun(Disc& disc, std::int32_t start) {
  MapSectors map = ReadMap(disc);
  const std::array<FreeRun, 1> runs = {{{start, map.DiscSize() - start}}};
  map.SetRuns(runs);
  map.UpdateChecksums();
  WriteMap(disc, map);
}

void TellMoves(Disc& disc, const std::map<std::int32_t, std::int32_t>& moves) {
  if (moves.empty()) return;
  for (std::int32_t* held : disc.TrackedSectors) {
    const auto move = moves.find(*held);
    if (move != moves.end()) *held = move->second;
  }
  disc.Host.DirectoriesMoved(moves);
}

// False if the disc is too damaged; nothing has changed then.
bool TryToCompact(Disc& disc) {
  disc.Host.SetStatus("Compacting Disc", true);
  const BusyPointer busy(disc.Host);
  auto objects = PlanMoves(disc);
  if (!objects) return false;
  Mover mover(disc, *objects);
  WriteOneRun(disc, mover.MoveAllDown());
  ReadFreeMap(disc);
  disc.ImageChanged = true;
  ++disc.Compactions;
  TellMoves(disc, mover.Moves());
  return true;
}

}  // namespace

void CompactDisc(Disc& disc) {
  if (!TryToCompact(disc)) disc.Host.ShowMessage(kCannotCompactMessage);
}

void CompactAfterRelease(Disc& disc) {
  if (!TryToCompact(disc)) disc.Host.Note(kCannotCompactMessage);
}

}  // namespace sectorbox
