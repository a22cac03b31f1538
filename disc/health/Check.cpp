#include "disc/health/Check.h"

#include <algorithm>
#include <array>
#include <set>
#include <unordered_set>

#include "disc/catalogue/Adfs.h"
#include "disc/catalogue/WalkBudget.h"

namespace sectorbox {
namespace {

using namespace format;

// Sectors that something claims: [Start, End), cut at the disc's end. A free run has Run set;
// an object is named by the directory it is listed in and its name. An empty file is given a sector
// by us and none by the BBC, whose compaction leaves it wherever the next object starts: it claims
// its sector only where nothing else does.
struct Extent {
  std::int32_t Start = 0;
  std::int32_t End = 0;
  std::int32_t Run = -1;
  std::int32_t Directory = -1;
  std::string Name;
  bool IsEmptyFile = false;
};

struct DirectoryNode {
  std::int32_t Parent = -1;
  std::string Name;
};

std::string SectorText(std::int32_t sector) {
  return "sector " + Hex(static_cast<std::uint32_t>(sector), 6);
}

class Checker {
 public:
  explicit Checker(Disc& disc) : disc_(disc), size_(MapDiscSize(disc)) {}

  std::vector<Fault> Run() {
    CheckMap();
    CheckRuns();
    Own({0, kRootSector, -1, -1, "the free space map", false});
    directories_.push_back({-1, "$"});
    Own({kRootSector, kFirstFreeSector, -1, -1, "$", false});
    if (kFirstFreeSector > size_) Error("$", "runs past the end of the disc");
    CheckDirectory(0, kRootSector, kRootSector);
    CheckOwnership();
    return std::move(faults_);
  }

 private:
  void Error(std::string place, std::string text) {
    faults_.push_back({true, std::move(place), std::move(text)});
  }
  void Warn(std::string place, std::string text) {
    faults_.push_back({false, std::move(place), std::move(text)});
  }

  std::string PathOf(std::int32_t directory) const {
    const DirectoryNode& node = directories_[static_cast<std::size_t>(directory)];
    return node.Parent < 0 ? node.Name : PathOf(node.Parent) + "." + node.Name;
  }
  std::string NameOf(const Extent& extent) const {
    if (extent.Run >= 0) return "free run " + std::to_string(extent.Run);
    return extent.Directory < 0 ? extent.Name : PathOf(extent.Directory) + "." + extent.Name;
  }

  void CheckMap() {
    const std::int32_t there = disc_.TheDisc.DiscSize();
    if (disc_.TheDisc.disctype() == kCF && size_ > there) {
      Error("sector 0", "the disc has " + std::to_string(size_) +
                            " sectors, and the card room for " + std::to_string(there));
    }
    for (const std::int32_t base : {0, kSectorSize}) {
      const std::uint8_t stored = disc_.TheDisc.Fetch(base + kSectorSize - 1);
      const std::uint8_t right = MapChecksum(disc_, base);
      if (stored == right) continue;
      Error("sector " + std::to_string(base / kSectorSize),
            "the checksum is " + Hex(stored, 2) + " and should be " + Hex(right, 2));
    }
    const std::uint8_t end = disc_.TheDisc.Fetch(kMapEnd);
    if (end % kMapEntrySize != 0) {
      Error("sector 1", "the end of the free list is no multiple of 3: " + std::to_string(end));
    }
    if (end > kMapEntries * kMapEntrySize) {
      Error("sector 1", "the end of the free list is above 246: " + std::to_string(end));
    }
  }

  void CheckRuns() {
    const std::int32_t count = std::min<std::int32_t>(disc_.FreeCount, kMapEntries);
    std::int32_t formerStart = -1;
    std::int32_t formerEnd = 0;
    for (std::int32_t i = 0; i < count; ++i) {
      const std::int32_t start = disc_.FreeStart[static_cast<std::size_t>(i)];
      const std::int32_t end = start + disc_.FreeLen[static_cast<std::size_t>(i)];
      const std::string place = "run " + std::to_string(i);
      if (i > 0 && start < formerStart) {
        Error(place, "starts before the run in front of it");
      } else if (i > 0 && start < formerEnd) {
        Error(place, "overlaps the run in front of it");
      } else if (i > 0 && start == formerEnd) {
        Error(place, "touches the run in front of it");
      }
      if (end > size_) Error(place, "runs past the end of the disc");
      Own({start, end, i, -1, "", false});
      formerStart = start;
      formerEnd = end;
    }
  }

  void Own(Extent extent) {
    extent.Start = std::min(extent.Start, size_);
    extent.End = std::min(extent.End, size_);
    if (extent.Start < extent.End) extents_.push_back(std::move(extent));
  }

  // node is the directory's index; parent the start sector of the one that lists it.
  void CheckDirectory(std::int32_t node, std::int32_t sector, std::int32_t parent) {
    // Each directory is looked into once: one that is listed twice shows as an overlap.
    if (!seen_.insert(sector).second) return;
    if (!budget_.Enter()) {
      if (!toldDepth_) Error(PathOf(node), "lies too deep: not looked at any further");
      toldDepth_ = true;
      return;
    }
    if (CheckFrame(PathOf(node), sector, parent)) {
      ancestors_.push_back(sector);
      CheckEntries(node, sector);
      ancestors_.pop_back();
    }
    budget_.Leave();
  }

  bool HasMark(std::int64_t offset) {
    std::array<std::uint8_t, kHugoLength> mark{};
    disc_.TheDisc.FetchBytes(offset, mark);
    return std::equal(mark.begin(), mark.end(), kHugo);
  }

  // False for what no reader takes for a directory.
  bool CheckFrame(const std::string& path, std::int32_t sector, std::int32_t parent) {
    const std::int64_t at = SectorOffset(sector);
    if (!HasMark(at + kDirMark)) {
      Error(path, "is no directory: the mark at its start is missing");
      return false;
    }
    if (!HasMark(at + kDirMarkCopy)) Error(path, "the marks at its start and its end differ");
    if (disc_.TheDisc.Fetch(at + kDirSequence) != disc_.TheDisc.Fetch(at + kDirSequenceCopy)) {
      Error(path, "the sequence numbers at its start and its end differ");
    }
    const std::int32_t stored = Fetch24(disc_, at + kDirParent);
    const bool root = sector == kRootSector;
    if (stored != parent && !(root && stored == 0)) {
      Error(path,
            "names " + SectorText(stored) + " as its parent instead of " + SectorText(parent));
    }
    return true;
  }

  void CheckEntries(std::int32_t node, std::int32_t sector) {
    std::set<std::string> names;
    std::string former;
    for (std::int32_t slot = 0; slot < kEntryCount; ++slot) {
      const std::string name = GetEntryName(disc_, sector, slot);
      if (EntryIsEmpty(name)) break;
      const std::string path = PathOf(node) + "." + name;
      CheckName(path, name, former, names);
      former = UpperCase(name);
      CheckEntry(node, path, name, sector, slot);
    }
  }

  void CheckName(const std::string& path, const std::string& name, const std::string& former,
                 std::set<std::string>& names) {
    const std::string upper = UpperCase(name);
    if (!names.insert(upper).second) {
      Warn(path, "the name is there twice");
    } else if (upper < former) {
      Warn(path, "stands out of order");
    }
    const bool typable = std::all_of(name.begin(), name.end(), [](char c) {
      const auto code = static_cast<unsigned char>(c);
      return code >= 32 && code < 127;
    });
    if (!typable) Warn(path, "the name holds characters that can't be typed");
  }

  void CheckEntry(std::int32_t node, const std::string& path, const std::string& name,
                  std::int32_t sector, std::int32_t slot) {
    const std::int64_t entry = EntryOffset(sector, slot);
    const std::int32_t start = Fetch24(disc_, entry + kEntrySector);
    const bool isDirectory = EntryHas(disc_, entry, kAttrDirectory);
    if (isDirectory && std::find(ancestors_.begin(), ancestors_.end(), start) != ancestors_.end()) {
      Error(path, "leads back to a directory that it lies in");
      return;
    }
    const std::uint32_t length = isDirectory ? kDirSize : Fetch32(disc_, entry + kEntryLength);
    const std::int32_t end = start + SectorsOfLength(length);
    // On a full disc the BBC leaves an empty file just behind the last sector.
    const bool atEndOfFullDisc = length == 0 && start == size_;
    if (start >= size_ && !atEndOfFullDisc) {
      Error(path, "starts past the end of the disc");
    } else if (end > size_ && !atEndOfFullDisc) {
      Error(path, "runs past the end of the disc");
    }
    Own({start, end, -1, node, name, length == 0});
    if (!isDirectory || start >= size_) return;
    const auto child = static_cast<std::int32_t>(directories_.size());
    directories_.push_back({node, name});
    CheckDirectory(child, start, sector);
  }

  // Goes over all that is claimed in the order of the sectors. Whatever begins before the furthest
  // end so far overlaps the one that reaches there; between that end and the next begin is a hole.
  // Empty files stand behind all else that starts where they do, so that none hides an overlap.
  void CheckOwnership() {
    std::stable_sort(extents_.begin(), extents_.end(), [](const Extent& a, const Extent& b) {
      return a.Start != b.Start ? a.Start < b.Start : a.IsEmptyFile < b.IsEmptyFile;
    });
    const Extent* furthest = nullptr;
    std::int32_t reached = 0;
    for (const Extent& extent : extents_) {
      if (extent.Start > reached) WarnOfHole(reached, extent.Start);
      const bool overlaps = furthest != nullptr && extent.Start < reached;
      if (overlaps && !extent.IsEmptyFile) TellOverlap(*furthest, extent);
      if (extent.End > reached) {
        furthest = &extent;
        reached = extent.End;
      }
    }
    if (reached < size_) WarnOfHole(reached, size_);
  }

  void WarnOfHole(std::int32_t start, std::int32_t end) {
    // What lies deeper than was looked may own it.
    if (budget_.Exhausted()) return;
    Warn(SectorText(start), std::to_string(end - start) + " sectors from here belong to nothing");
  }

  void TellOverlap(const Extent& first, const Extent& second) {
    // Of two runs CheckRuns has told.
    if (first.Run >= 0 && second.Run >= 0) return;
    // The object is the place, since it is what the user may lose.
    const bool firstIsPlace = second.Run >= 0;
    Error(NameOf(firstIsPlace ? first : second),
          "overlaps " + NameOf(firstIsPlace ? second : first));
  }

  Disc& disc_;
  std::int32_t size_;
  std::vector<Fault> faults_;
  std::vector<DirectoryNode> directories_;
  std::vector<Extent> extents_;
  std::vector<std::int32_t> ancestors_;
  std::unordered_set<std::int32_t> seen_;
  WalkBudget budget_;
  bool toldDepth_ = false;
};

}  // namespace

std::vector<Fault> CheckDisc(Disc& disc) {
  return Checker(disc).Run();
}

}  // namespace sectorbox
