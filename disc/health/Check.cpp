#include "disc/health/Check.h"

#include <algorithm>
#include <string>
#include <utility>

#include "disc/catalogue/Directories.h"
#include "disc/format/Names.h"
#include "disc/format/SectorSet.h"
#include "disc/health/DiscSizes.h"

namespace sectorbox {
namespace {

using namespace format;

// Sectors that something other than an empty file claims: [Start, End), cut at the disc's end.
struct Extent {
  std::uint32_t Start : 24;
  std::uint32_t Slot : 8;  // of the object's entry; of a free run, its number
  std::int32_t End;
  std::int32_t Node;    // of the directory that lists the object, or one of the numbers below
  std::uint32_t Order;  // how many extents were noted before
};
static_assert(sizeof(Extent) == 16);
constexpr std::int32_t kRunNode = -1;
constexpr std::int32_t kMapNode = -2;
constexpr std::int32_t kRootNode = -3;

// A directory that the walk has gone into. Its name is read again if it is needed.
struct DirectoryNode {
  std::int32_t Parent = -1;  // the node of the directory that lists it; -1 for the root
  std::int32_t Sector = 0;
  std::int32_t Slot = -1;  // of its entry
};

// A damaged disc of few sectors may list some more objects than it has sectors. They are all looked
// at.
constexpr std::int32_t kLeeway = 10000;

void AppendPath(const WalkStep& at, std::string& path) {
  if (at.Parent == nullptr || at.Listed == nullptr) {
    path += '$';
    return;
  }
  AppendPath(*at.Parent, path);
  path += '.';
  path += at.Listed->Name();
}

std::string PathOf(const WalkStep& at) {
  std::string path;
  AppendPath(at, path);
  return path;
}

Touched DirectoryOf(const WalkStep& at) {
  return {TouchedKind::kDirectory, at.Sector, -1, PathOf(at)};
}

Touched MapSector(std::int32_t sector) {
  return {TouchedKind::kMapSector, sector, -1, ""};
}

Touched RunOf(std::int32_t place) {
  return {TouchedKind::kRun, place, -1, ""};
}

Touched RootDirectory() {
  return {TouchedKind::kDirectory, kRootSector, -1, "$"};
}

// Passes the first kMaxFaults on, and counts the others. What a fault touches is made only if it is
// passed on: a damaged disc may have millions of faults, each with a long path.
class FaultList {
 public:
  explicit FaultList(const std::function<void(const Fault&)>& tell) : tell_(tell) {}

  // make gives the fault.
  template <typename Make>
  void Add(Severity weight, Make make) {
    if (told_ < kMaxFaults) {
      ++told_;
      tell_(make());
      return;
    }
    ++more_;
    if (weight == Severity::kError) moreWeight_ = weight;
  }
  void End() const {
    if (more_ == 0) return;
    tell_({FaultKind::kMore, moreWeight_, RootDirectory(), more_, 0, {}});
  }

 private:
  const std::function<void(const Fault&)>& tell_;
  std::size_t told_ = 0;
  std::int64_t more_ = 0;
  Severity moreWeight_ = Severity::kWarning;
};

class Checker : public DirectoryVisitor {
 public:
  Checker(Disc& disc, const std::function<void(const Fault&)>& tell)
      : disc_(disc), map_(ReadMap(disc)), size_(map_.DiscSize()), faults_(tell) {
    mostExtents_ = static_cast<std::size_t>(std::min(size_ + kLeeway, kMaxObjects));
    extents_.reserve(mostExtents_);
  }

  void Run() {
    CheckMap();
    CheckRuns();
    Own(0, kRootSector, kMapNode, 0);
    Own(kRootSector, kFirstFreeSector, kRootNode, 0);
    if (kFirstFreeSector > size_) Add(FaultKind::kRunsPastEnd, RootDirectory);
    // If the walk ends before it is done, it has reported why.
    (void)WalkDirectories(disc_, kRootSector, *this);
    CheckOwnership();
    for (const Fault& fault : FindSizeFaults(disc_)) {
      faults_.Add(fault.Weight, [&] { return fault; });
    }
    faults_.End();
  }

  Walk Enter(const WalkStep& at, const Directory& directory) override {
    const std::int32_t parent = visits_.empty() ? -1 : visits_.back().Node;
    visits_.push_back({static_cast<std::int32_t>(directories_.size()), {}, {}});
    directories_.push_back({parent, at.Sector, at.Slot});
    (void)above_.Insert(at.Sector);
    CheckFrame(at, directory);
    return Walk::kOn;
  }

  Walk Meet(const WalkStep& at, std::int32_t slot, const Entry& entry) override {
    if (extents_.size() >= mostExtents_) {
      Add(FaultKind::kTooMany, [&] { return DirectoryOf(at); });
      exhausted_ = true;
      return Walk::kStop;
    }
    const auto touched = [&] {
      return Touched{TouchedKind::kEntry, at.Sector, slot, PathOf(at) + "." + entry.Name()};
    };
    CheckName(touched, entry.Name());
    return CheckEntry(touched, slot, entry) ? Walk::kOn : Walk::kPassOver;
  }

  Walk OutOfBounds(const WalkStep& at) override {
    if (!exhausted_) Add(FaultKind::kTooDeep, [&] { return DirectoryOf(at); });
    exhausted_ = true;
    return Walk::kOn;
  }

  void Leave(const WalkStep& at) override {
    above_.Erase(at.Sector);
    visits_.pop_back();
  }

 private:
  // A directory that the walk is in.
  struct Visit {
    std::int32_t Node = 0;
    std::vector<std::string> Names;  // the folded names met so far
    std::string Highest;             // the last of them in rising order
  };

  // touched gives what the fault touches.
  template <typename MakeTouched>
  void Add(FaultKind kind, MakeTouched touched, std::int64_t is = 0, std::int64_t should = 0) {
    faults_.Add(SeverityOf(kind), [&] { return MakeFault(kind, touched(), is, should); });
  }

  void AppendPathOfNode(std::int32_t node, std::string& path) const {
    const DirectoryNode& directory = directories_[static_cast<std::size_t>(node)];
    if (directory.Parent < 0) {
      path += '$';
    } else {
      AppendPathOfEntry(directory.Parent, directory.Slot, path);
    }
  }
  void AppendPathOfEntry(std::int32_t node, std::int32_t slot, std::string& path) const {
    AppendPathOfNode(node, path);
    path += '.';
    path += EntryAt(disc_, directories_[static_cast<std::size_t>(node)].Sector, slot).Name();
  }
  Touched ObjectOf(const Extent& extent) const {
    switch (extent.Node) {
      case kRunNode:
        return RunOf(static_cast<std::int32_t>(extent.Slot));
      case kMapNode:
        return {TouchedKind::kMap, 0, -1, ""};
      case kRootNode:
        return RootDirectory();
      default:
        break;
    }
    const DirectoryNode& directory = directories_[static_cast<std::size_t>(extent.Node)];
    const auto slot = static_cast<std::int32_t>(extent.Slot);
    Touched entry{TouchedKind::kEntry, directory.Sector, slot, ""};
    AppendPathOfEntry(extent.Node, slot, entry.Path);
    return entry;
  }

  void CheckMap() {
    const std::int32_t there = disc_.TheDisc.DiscSize();
    if (disc_.TheDisc.HasFixedSize() && size_ > there) {
      AddToMap(FaultKind::kLargerThanCard, 0, size_, there);
    }
    for (const std::int32_t sector : {0, 1}) {
      const std::uint8_t stored = map_.StoredChecksum(sector);
      const std::uint8_t right = map_.RightChecksum(sector);
      if (stored != right) AddToMap(FaultKind::kWrongMapSum, sector, stored, right);
    }
    const std::uint8_t end = map_.EndPointer();
    if (end % kMapEntrySize != 0) AddToMap(FaultKind::kMapEndNoMultiple, 1, end);
    if (end > kMapEntries * kMapEntrySize) AddToMap(FaultKind::kMapEndTooHigh, 1, end);
  }

  void AddToMap(FaultKind kind, std::int32_t sector, std::int64_t is, std::int64_t should = 0) {
    Add(
        kind, [&] { return MapSector(sector); }, is, should);
  }

  void CheckRuns() {
    std::vector<FreeRun> runs = FreeRuns(disc_);
    if (runs.size() > static_cast<std::size_t>(kMapEntries)) runs.resize(kMapEntries);
    for (std::size_t i = 0; i < runs.size(); ++i) {
      const FreeRun& run = runs[i];
      const auto place = static_cast<std::int32_t>(i);
      const auto touched = [&] { return RunOf(place); };
      if (i > 0) CheckOrder(touched, runs[i - 1], run);
      if (run.End() > size_) Add(FaultKind::kRunsPastEnd, touched);
      Own(run.Start, run.End(), kRunNode, place);
    }
  }

  template <typename MakeTouched>
  void CheckOrder(const MakeTouched& touched, const FreeRun& former, const FreeRun& run) {
    if (run.Start < former.Start) {
      Add(FaultKind::kRunOutOfOrder, touched);
    } else if (run.Start < former.End()) {
      Add(FaultKind::kRunOverlapsFormer, touched);
    } else if (run.Start == former.End()) {
      Add(FaultKind::kRunTouchesFormer, touched);
    }
  }

  void Own(std::int32_t start, std::int32_t end, std::int32_t node, std::int32_t slot) {
    if (start >= std::min(end, size_)) return;
    extents_.push_back({static_cast<std::uint32_t>(start) & 0xFFFFFF,
                        static_cast<std::uint32_t>(slot) & 0xFF, std::min(end, size_), node,
                        static_cast<std::uint32_t>(extents_.size())});
  }

  void CheckFrame(const WalkStep& at, const Directory& directory) {
    const auto touched = [&] { return DirectoryOf(at); };
    if (!directory.HasMark()) {
      Add(FaultKind::kNoMark, touched);
      return;
    }
    if (!directory.HasMarkAtEnd()) Add(FaultKind::kMarksDiffer, touched);
    if (directory.Sequence() != directory.SequenceAtEnd()) {
      Add(FaultKind::kSequencesDiffer, touched);
    }
    const std::int32_t parent = at.Parent == nullptr ? kRootSector : at.Parent->Sector;
    const std::int32_t stored = directory.Parent();
    const bool root = at.Sector == kRootSector;
    if (stored != parent && !(root && stored == 0)) {
      Add(FaultKind::kWrongParent, touched, stored, parent);
    }
  }

  template <typename MakeTouched>
  void CheckName(const MakeTouched& touched, const std::string& name) {
    Visit& visit = visits_.back();
    std::string folded = FoldName(name);
    if (visit.Names.empty() || folded > visit.Highest) {
      visit.Highest = folded;
    } else if (std::ranges::find(visit.Names, folded) != visit.Names.end()) {
      Add(FaultKind::kNameTwice, touched);
    } else if (folded < visit.Names.back()) {
      Add(FaultKind::kNameOutOfOrder, touched);
    }
    visit.Names.push_back(std::move(folded));
    const bool typable = std::all_of(name.begin(), name.end(), [](char c) {
      const auto code = static_cast<unsigned char>(c);
      return code >= 32 && code < 127;
    });
    if (!typable) Add(FaultKind::kNameUntypable, touched);
  }

  // True if the entry is a directory that the walk has to go into.
  template <typename MakeTouched>
  bool CheckEntry(const MakeTouched& touched, std::int32_t slot, const Entry& entry) {
    const std::int32_t start = entry.Start();
    if (entry.IsDirectory() && above_.Has(start)) {
      Add(FaultKind::kCircle, touched);
      return false;
    }
    const bool isEmpty = entry.Size() == 0;
    const std::int32_t end = start + entry.Sectors();
    // On a full disc the BBC leaves an empty file just behind the last sector.
    const bool atEndOfFullDisc = isEmpty && start == size_;
    if (start >= size_ && !atEndOfFullDisc) {
      Add(FaultKind::kStartsPastEnd, touched);
    } else if (end > size_ && !atEndOfFullDisc) {
      Add(FaultKind::kRunsPastEnd, touched);
    }
    if (isEmpty) {
      (void)emptyFiles_.Insert(start);
    } else {
      Own(start, end, visits_.back().Node, slot);
    }
    return entry.IsDirectory() && start < size_;
  }

  // Goes over all extents in the order of their starts. An extent that starts before the furthest
  // end so far overlaps the extent that reaches there. If it starts behind that end, the sectors
  // between are a hole.
  void CheckOwnership() {
    std::ranges::sort(extents_, {}, [](const Extent& extent) {
      return std::pair<std::uint32_t, std::uint32_t>(extent.Start, extent.Order);
    });
    const Extent* furthest = nullptr;
    std::int32_t reached = 0;
    for (const Extent& extent : extents_) {
      const auto start = static_cast<std::int32_t>(extent.Start);
      WarnOfHoles(reached, start);
      if (furthest != nullptr && start < reached) TellOverlap(*furthest, extent);
      if (extent.End > reached) {
        furthest = &extent;
        reached = extent.End;
      }
    }
    WarnOfHoles(reached, size_);
  }

  // We give an empty file a sector, but the BBC gives it none, and its compaction leaves the file
  // wherever the next object starts. So an empty file claims its sector only if nothing else does.
  void WarnOfHoles(std::int32_t start, std::int32_t end) {
    emptyFiles_.ForEachGap(start, end,
                           [&](std::int32_t from, std::int32_t to) { WarnOfHole(from, to); });
  }

  void WarnOfHole(std::int32_t start, std::int32_t end) {
    // A directory that the walk didn't reach may own these sectors.
    if (exhausted_) return;
    Add(
        FaultKind::kUnowned,
        [&] {
          return Touched{TouchedKind::kSectors, start, -1, ""};
        },
        end - start);
  }

  void TellOverlap(const Extent& first, const Extent& second) {
    // CheckRuns has reported two free runs that overlap.
    if (first.Node == kRunNode && second.Node == kRunNode) return;
    // The fault names the object as its place and not the free run: the user may lose the object.
    const bool firstIsPlace = second.Node == kRunNode;
    faults_.Add(SeverityOf(FaultKind::kOverlap), [&] {
      Fault fault = MakeFault(FaultKind::kOverlap, ObjectOf(firstIsPlace ? first : second));
      fault.Other = ObjectOf(firstIsPlace ? second : first);
      return fault;
    });
  }

  Disc& disc_;
  MapSectors map_;
  std::int32_t size_;
  FaultList faults_;
  std::vector<DirectoryNode> directories_;  // in the order of the walk, the root first
  std::vector<Extent> extents_;
  std::size_t mostExtents_ = 0;  // the walk ends when there are so many
  SectorSet emptyFiles_;         // where they start
  std::vector<Visit> visits_;    // the directories that the walk is in, the root first
  SectorSet above_;              // the sectors of the same
  bool exhausted_ = false;       // the walk has come to one of its bounds
};

}  // namespace

void CheckDisc(Disc& disc, const std::function<void(const Fault&)>& tell) {
  Checker(disc, tell).Run();
}

std::vector<Fault> CheckDisc(Disc& disc) {
  std::vector<Fault> faults;
  CheckDisc(disc, [&](const Fault& fault) { faults.push_back(fault); });
  return faults;
}

}  // namespace sectorbox
