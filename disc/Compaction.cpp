#include "disc/Compaction.h"

#include <algorithm>
#include <map>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "disc/Adfs.h"
#include "disc/BusyPointer.h"
#include "disc/WalkBudget.h"

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
  bool IsEmpty = false;  // a file of no bytes, which to the BBC owns no sector
};

// As many objects as the largest disc has sectors; only a damaged disc seems to hold more.
constexpr std::size_t kMaxObjects = 0x210000;
// Sectors are moved this many bytes at a time.
constexpr std::int64_t kMoveSize = 65536;

struct Walk {
  WalkBudget Budget;
  std::unordered_set<std::int32_t> Seen;
};

// Adds the directory and all below it; false when the walk comes to a directory a second time, or
// runs out of its bounds.
bool CollectObjects(Disc& disc, std::int32_t DirSector, std::vector<ObjectRecord>& objects,
                    Walk& walk) {
  if (!walk.Seen.insert(DirSector).second || !walk.Budget.Enter()) return false;
  if (objects.size() + kEntryCount > kMaxObjects) return false;
  // What the directory says of itself, and not what its entry says, is how it is found again.
  objects.push_back({GetDirName(disc, DirSector), false,
                     Fetch24(disc, SectorOffset(DirSector) + kDirParent), DirSector, kDirSectors,
                     false});
  bool whole = true;
  const std::int32_t slots = IsDirectory(disc, DirSector) ? kEntryCount : 0;
  for (std::int32_t slot = 0; whole && slot < slots; ++slot) {
    const std::string name = GetEntryName(disc, DirSector, slot);
    if (EntryIsEmpty(name)) break;
    const std::int64_t entry = EntryOffset(DirSector, slot);
    const std::int32_t start = Fetch24(disc, entry + kEntrySector);
    if (EntryHas(disc, entry, kAttrDirectory)) {
      whole = CollectObjects(disc, start, objects, walk);
    } else {
      const std::uint32_t length = Fetch32(disc, entry + kEntryLength);
      objects.push_back({name, true, DirSector, start, SectorsOfLength(length), length == 0});
    }
  }
  walk.Budget.Leave();
  return whole;
}

// Here an empty file owns a sector of its own. The BBC gives it none and may have left it at a
// place that is another object's: then it owns nothing to be moved, and only its entry follows. The
// objects are in the order of their places, an empty file behind what else starts there.
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

// The objects in the order of their places, the root left out; none if the disc is too damaged.
std::optional<std::vector<ObjectRecord>> PlanMoves(Disc& disc) {
  std::vector<ObjectRecord> objects;
  Walk walk;
  if (!CollectObjects(disc, kRootSector, objects, walk)) return std::nullopt;
  objects.erase(objects.begin());
  std::sort(objects.begin(), objects.end(), [](const ObjectRecord& a, const ObjectRecord& b) {
    return a.Start != b.Start ? a.Start < b.Start : a.IsEmpty < b.IsEmpty;
  });
  DisownShared(objects, MapDiscSize(disc));
  if (WouldBeLost(objects, MapDiscSize(disc))) return std::nullopt;
  return objects;
}

// Rising, so that a move by less than the object's own length is safe too: objects only move down.
void MoveSectors(Disc& disc, std::int32_t from, std::int32_t to, std::int32_t sectors) {
  std::vector<std::uint8_t> part(static_cast<std::size_t>(kMoveSize));
  const std::int64_t length = SectorOffset(sectors);
  for (std::int64_t done = 0; done < length; done += kMoveSize) {
    const auto size = static_cast<std::size_t>(std::min(kMoveSize, length - done));
    const auto bytes = std::span(part).first(size);
    disc.TheDisc.FetchBytes(SectorOffset(from) + done, bytes);
    disc.TheDisc.StoreBytes(SectorOffset(to) + done, bytes);
  }
}

class Mover {
 public:
  Mover(Disc& disc, std::vector<ObjectRecord>& objects) : disc_(disc), objects_(objects) {
    for (ObjectRecord& object : objects_) children_[object.Parent].push_back(&object);
  }

  // Gives the first sector behind all objects.
  std::int32_t MoveAllDown() {
    std::int32_t next = kFirstFreeSector;
    for (ObjectRecord& object : objects_) {
      if (object.Start != next) Move(object, next);
      next += object.Sectors;
    }
    for (const ObjectRecord& object : objects_) {
      if (object.IsFile) continue;
      Store24(disc_, SectorOffset(object.Start) + kDirParent, object.Parent);
    }
    return next;
  }

  const std::map<std::int32_t, std::int32_t>& Moves() const { return moves_; }

 private:
  void Move(ObjectRecord& object, std::int32_t to) {
    const std::int32_t old = object.Start;
    MoveSectors(disc_, old, to, object.Sectors);
    // A directory whose own name or parent disagrees with its entry isn't found, and that entry
    // goes on pointing at the old place.
    const std::int32_t slot = FindEntry(disc_, object.Parent, object.Name);
    if (slot >= 0) Store24(disc_, EntryOffset(object.Parent, slot) + kEntrySector, to);
    object.Start = to;
    if (object.IsFile) return;
    moves_[old] = to;
    const auto children = children_.find(old);
    if (children == children_.end()) return;
    for (ObjectRecord* child : children->second) child->Parent = to;
  }

  Disc& disc_;
  std::vector<ObjectRecord>& objects_;
  std::unordered_map<std::int32_t, std::vector<ObjectRecord*>> children_;
  std::map<std::int32_t, std::int32_t> moves_;
};

void WriteOneRun(Disc& disc, std::int32_t start) {
  Store24(disc, kMapStarts, start);
  Store24(disc, kMapLengths, MapDiscSize(disc) - start);
  disc.TheDisc.Store(kMapEnd, kMapEntrySize);
  disc.TheDisc.Store(kMapChecksum0, MapChecksum(disc, kMapStarts));
  disc.TheDisc.Store(kMapChecksum1, MapChecksum(disc, kMapLengths));
}

void TellMoves(Disc& disc, const std::map<std::int32_t, std::int32_t>& moves) {
  if (moves.empty()) return;
  for (std::int32_t* held : disc.TrackedSectors) {
    const auto move = moves.find(*held);
    if (move != moves.end()) *held = move->second;
  }
  disc.Host.DirectoriesMoved(moves);
}

// False, with nothing changed, if the disc is too damaged for it.
bool TryToCompact(Disc& disc) {
  disc.Host.SetStatus("Compacting Disc", true);
  const BusyPointer busy(disc.Host);
  auto objects = PlanMoves(disc);
  if (!objects) return false;
  Mover mover(disc, *objects);
  WriteOneRun(disc, mover.MoveAllDown());
  ReadFreeMap(disc);
  disc.ImageChanged = true;
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
