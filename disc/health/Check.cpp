#include "disc/health/Check.h"

#include <algorithm>
#include <set>

#include "disc/catalogue/Directories.h"
#include "disc/format/Names.h"
#include "disc/format/Text.h"
#include "disc/health/DiscSizes.h"

namespace sectorbox {
namespace {

using namespace format;

// Sectors that something claims: [Start, End), cut at the disc's end. We give an empty file a
// sector, but the BBC gives it none, and its compaction leaves the file wherever the next object
// starts. So an empty file claims its sector only if nothing else does.
struct Extent {
  std::int32_t Start = 0;
  std::int32_t End = 0;
  std::int32_t Run = -1;        // the number of a free run; -1 for anything else
  std::int32_t Directory = -1;  // the node of the directory that lists an object; -1 if none does
  std::string Name;             // of the object in that directory
  bool IsEmptyFile = false;
};

struct DirectoryNode {
  std::int32_t Parent = -1;
  std::string Name;
};

std::string SectorText(std::int32_t sector) {
  return "sector " + Hex(static_cast<std::uint32_t>(sector), 6);
}

class Checker : public DirectoryVisitor {
 public:
  explicit Checker(Disc& disc) : disc_(disc), map_(ReadMap(disc)), size_(map_.DiscSize()) {}

  std::vector<Fault> Run() {
    CheckMap();
    CheckRuns();
    Own({0, kRootSector, -1, -1, "the free space map", false});
    directories_.push_back({-1, "$"});
    Own({kRootSector, kFirstFreeSector, -1, -1, "$", false});
    if (kFirstFreeSector > size_) Error("$", "runs past the end of the disc");
    // The checker never ends the walk: it reports a directory that lies too deep and goes on.
    (void)WalkDirectories(disc_, kRootSector, *this);
    CheckOwnership();
    for (Fault& fault : FindSizeFaults(disc_)) faults_.push_back(std::move(fault));
    return std::move(faults_);
  }

  Walk Enter(const WalkStep& at, const Directory& directory) override {
    // The root's node is there from the start; any other directory's was added last, by Meet.
    const auto node = static_cast<std::int32_t>(directories_.size()) - 1;
    visits_.push_back({at.Listed == nullptr ? 0 : node, "", {}});
    CheckFrame(at, directory);
    return Walk::kOn;
  }

  Walk Meet(const WalkStep& at, std::int32_t, const Entry& entry) override {
    const std::string path = PathOf(visits_.back().Node) + "." + entry.Name();
    CheckName(path, entry.Name());
    return CheckEntry(at, path, entry) ? Walk::kOn : Walk::kPassOver;
  }

  Walk OutOfBounds(const WalkStep&) override {
    if (!exhausted_) {
      Error(PathOf(static_cast<std::int32_t>(directories_.size()) - 1),
            "lies too deep: not looked at any further");
    }
    exhausted_ = true;
    return Walk::kOn;
  }

  void Leave(const WalkStep&) override { visits_.pop_back(); }

 private:
  // A directory that the walk is in.
  struct Visit {
    std::int32_t Node = 0;
    std::string FormerName;       // the folded name of the entry in front
    std::set<std::string> Names;  // the folded names met so far
  };

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
    if (disc_.TheDisc.HasFixedSize() && size_ > there) {
      Error("sector 0", "the disc has " + std::to_string(size_) +
                            " sectors, and the card room for " + std::to_string(there));
    }
    for (const std::int32_t sector : {0, 1}) {
      const std::uint8_t stored = map_.StoredChecksum(sector);
      const std::uint8_t right = map_.RightChecksum(sector);
      if (stored == right) continue;
      Error("sector " + std::to_string(sector),
            "the checksum is " + Hex(stored, 2) + " and should be " + Hex(right, 2));
    }
    const std::uint8_t end = map_.EndPointer();
    if (end % kMapEntrySize != 0) {
      Error("sector 1", "the end of the free list is no multiple of 3: " + std::to_string(end));
    }
    if (end > kMapEntries * kMapEntrySize) {
      Error("sector 1", "the end of the free list is above 246: " + std::to_string(end));
    }
  }

  void CheckRuns() {
    std::vector<FreeRun> runs = FreeRuns(disc_);
    if (runs.size() > static_cast<std::size_t>(kMapEntries)) runs.resize(kMapEntries);
    for (std::size_t i = 0; i < runs.size(); ++i) {
      const FreeRun& run = runs[i];
      const std::string place = "run " + std::to_string(i);
      if (i > 0) CheckOrder(place, runs[i - 1], run);
      if (run.End() > size_) Error(place, "runs past the end of the disc");
      Own({run.Start, run.End(), static_cast<std::int32_t>(i), -1, "", false});
    }
  }

  void CheckOrder(const std::string& place, const FreeRun& former, const FreeRun& run) {
    if (run.Start < former.Start) {
      Error(place, "starts before the run in front of it");
    } else if (run.Start < former.End()) {
      Error(place, "overlaps the run in front of it");
    } else if (run.Start == former.End()) {
      Error(place, "touches the run in front of it");
    }
  }

  void Own(Extent extent) {
    extent.Start = std::min(extent.Start, size_);
    extent.End = std::min(extent.End, size_);
    if (extent.Start < extent.End) extents_.push_back(std::move(extent));
  }

  void CheckFrame(const WalkStep& at, const Directory& directory) {
    const std::string path = PathOf(visits_.back().Node);
    if (!directory.HasMark()) {
      Error(path, "is no directory: the mark at its start is missing");
      return;
    }
    if (!directory.HasMarkAtEnd()) Error(path, "the marks at its start and its end differ");
    if (directory.Sequence() != directory.SequenceAtEnd()) {
      Error(path, "the sequence numbers at its start and its end differ");
    }
    const std::int32_t parent = at.Parent == nullptr ? kRootSector : at.Parent->Sector;
    const std::int32_t stored = directory.Parent();
    const bool root = at.Sector == kRootSector;
    if (stored != parent && !(root && stored == 0)) {
      Error(path,
            "names " + SectorText(stored) + " as its parent instead of " + SectorText(parent));
    }
  }

  void CheckName(const std::string& path, const std::string& name) {
    Visit& visit = visits_.back();
    const std::string folded = FoldName(name);
    if (!visit.Names.insert(folded).second) {
      Warn(path, "the name is there twice");
    } else if (folded < visit.FormerName) {
      Warn(path, "stands out of order");
    }
    visit.FormerName = folded;
    const bool typable = std::all_of(name.begin(), name.end(), [](char c) {
      const auto code = static_cast<unsigned char>(c);
      return code >= 32 && code < 127;
    });
    if (!typable) Warn(path, "the name holds characters that can't be typed");
  }

  static bool LeadsBack(const WalkStep& at, std::int32_t sector) {
    for (const WalkStep* step = &at; step != nullptr; step = step->Parent) {
      if (step->Sector == sector) return true;
    }
    return false;
  }

  // True if the entry is a directory that the walk has to go into.
  bool CheckEntry(const WalkStep& at, const std::string& path, const Entry& entry) {
    const std::int32_t start = entry.Start();
    if (entry.IsDirectory() && LeadsBack(at, start)) {
      Error(path, "leads back to a directory that it lies in");
      return false;
    }
    const bool isEmpty = entry.Size() == 0;
    const std::int32_t end = start + entry.Sectors();
    // On a full disc the BBC leaves an empty file just behind the last sector.
    const bool atEndOfFullDisc = isEmpty && start == size_;
    if (start >= size_ && !atEndOfFullDisc) {
      Error(path, "starts past the end of the disc");
    } else if (end > size_ && !atEndOfFullDisc) {
      Error(path, "runs past the end of the disc");
    }
    Own({start, end, -1, visits_.back().Node, entry.Name(), isEmpty});
    if (!entry.IsDirectory() || start >= size_) return false;
    directories_.push_back({visits_.back().Node, entry.Name()});
    return true;
  }

  // Goes over all extents in the order of their starts. An extent that starts before the furthest
  // end so far overlaps the extent that reaches there. If it starts behind that end, the sectors
  // between are a hole. Of extents with one start, empty files come last, so that none hides an
  // overlap.
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
    // A directory that the walk didn't reach may own these sectors.
    if (exhausted_) return;
    Warn(SectorText(start), std::to_string(end - start) + " sectors from here belong to nothing");
  }

  void TellOverlap(const Extent& first, const Extent& second) {
    // CheckRuns has reported two free runs that overlap.
    if (first.Run >= 0 && second.Run >= 0) return;
    // The fault names the object as its place and not the free run: the user may lose the object.
    const bool firstIsPlace = second.Run >= 0;
    Error(NameOf(firstIsPlace ? first : second),
          "overlaps " + NameOf(firstIsPlace ? second : first));
  }

  Disc& disc_;
  MapSectors map_;
  std::int32_t size_;
  std::vector<Fault> faults_;
  std::vector<DirectoryNode> directories_;
  std::vector<Extent> extents_;
  std::vector<Visit> visits_;  // the directories that the walk is in, the root first
  bool exhausted_ = false;     // the walk has come to one of its bounds
};

}  // namespace

std::vector<Fault> CheckDisc(Disc& disc) {
  return Checker(disc).Run();
}

}  // namespace sectorbox
