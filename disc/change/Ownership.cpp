#include "disc/change/Ownership.h"

#include <algorithm>

#include "disc/catalogue/Directories.h"

namespace sectorbox {

using namespace format;

namespace {

// On a sound disc no two empty files lie at one sector. The BBC's compaction may leave a few there,
// and a damaged disc any number.
constexpr std::size_t kMostSharedSectors = 100000;

}  // namespace

// Collects what the directories list. A directory without its mark ends the walk: nobody can tell
// what it listed.
class Ownership::Collector : public DirectoryVisitor {
 public:
  explicit Collector(Ownership& owners) : owners_(owners) {}

  Walk Enter(const WalkStep& at, const Directory& directory) override {
    if (owners_.extents_.size() > static_cast<std::size_t>(kMaxObjects)) return Walk::kStop;
    owners_.extents_.push_back({at.Sector, kDirSectors});
    return directory.HasMark() ? Walk::kOn : Walk::kStop;
  }

  Walk Meet(const WalkStep&, std::int32_t, const Entry& entry) override {
    if (entry.IsDirectory()) return Walk::kOn;
    if (entry.Length() == 0) {
      if (owners_.emptyFiles_.Insert(entry.Start())) return Walk::kOn;
      ++owners_.moreEmptyFiles_[entry.Start()];
      if (owners_.moreEmptyFiles_.size() > kMostSharedSectors) return Walk::kStop;
    } else {
      owners_.extents_.push_back({entry.Start(), entry.Sectors()});
    }
    return Walk::kOn;
  }

 private:
  Ownership& owners_;
};

// Collects which of the sectors [start, end) belong to something. The BBC gives an empty file no
// sector.
class Ownership::OtherOwners : public DirectoryVisitor {
 public:
  OtherOwners(std::int32_t start, std::int32_t end) : start_(start), end_(end) {}

  SectorSet Owned;  // counted from start on

  Walk Enter(const WalkStep& at, const Directory&) override {
    Note(at.Sector, kDirSectors);
    return Walk::kOn;
  }
  Walk Meet(const WalkStep&, std::int32_t, const Entry& entry) override {
    if (entry.Size() > 0) Note(entry.Start(), entry.Sectors());
    return Walk::kOn;
  }

 private:
  void Note(std::int32_t sector, std::int32_t sectors) {
    Owned.InsertRange(sector - start_, std::min(sector + sectors, end_) - start_);
  }

  std::int32_t start_;
  std::int32_t end_;
};

// Collects the sectors that more than one object claims.
class Ownership::SharedSectors : public DirectoryVisitor {
 public:
  SharedSectors(SectorSet& shared, std::int32_t discSize) : shared_(shared), discSize_(discSize) {
    owned_.InsertRange(0, kFirstFreeSector);
  }

  Walk Enter(const WalkStep&, const Directory&) override { return Walk::kOn; }
  Walk Meet(const WalkStep&, std::int32_t, const Entry& entry) override {
    if (entry.Size() == 0) return Walk::kOn;
    owned_.InsertRange(entry.Start(), std::min(entry.Start() + entry.Sectors(), discSize_),
                       &shared_);
    return Walk::kOn;
  }
  // LeftWithoutOwner's own walk ends at the same bound, and then tells.
  Walk OutOfBounds(const WalkStep&) override {
    shared_.InsertRange(0, discSize_);
    return Walk::kStop;
  }

 private:
  SectorSet& shared_;
  SectorSet owned_;
  std::int32_t discSize_;
};

void Ownership::NoteShared() {
  sharedNoted_ = true;
  sharedNotedAt_ = disc_.Compactions;
  shared_ = {};
  SharedSectors shared(shared_, MapDiscSize(disc_));
  (void)WalkDirectories(disc_, kRootSector, shared);
}

std::vector<FreeRun> Ownership::LeftWithoutOwner(std::int32_t dirSector, std::int32_t start,
                                                 std::int32_t end) {
  if (!disc_.ObjectsOverlap) return {{start, end - start}};
  // The object's entry is gone by now, so the walk of NoteShared doesn't see what it shared with
  // one other object: all of its sectors count as shared. If the directory itself shares sectors,
  // the change of it may have changed what another directory lists.
  if (!sharedNoted_ || sharedNotedAt_ != disc_.Compactions) {
    NoteShared();
    shared_.InsertRange(start, end);
  }
  if (shared_.HasAny(dirSector, dirSector + kDirSectors)) sharedNoted_ = false;
  if (!shared_.HasAny(start, end)) return {{start, end - start}};
  OtherOwners others(start, end);
  if (!WalkDirectories(disc_, kRootSector, others)) return {};
  std::vector<FreeRun> left;
  others.Owned.ForEachGap(0, end - start, [&](std::int32_t from, std::int32_t to) {
    left.push_back({start + from, to - from});
  });
  return left;
}

void Ownership::NoteOwners() {
  noted_ = true;
  notedAt_ = disc_.Compactions;
  extents_.clear();
  emptyFiles_ = {};
  moreEmptyFiles_.clear();
  Collector collector(*this);
  canBeTold_ = WalkDirectories(disc_, kRootSector, collector);
  std::sort(extents_.begin(), extents_.end(),
            [](const Extent& a, const Extent& b) { return a.Start < b.Start; });
  // If objects overlap, writing to one of them may change what another, a directory, lists.
  std::int64_t end = 0;
  for (const Extent& extent : extents_) {
    if (extent.Start < end) canBeTold_ = false;
    end = std::max(end, std::int64_t{extent.Start} + extent.Sectors);
  }
}

bool Ownership::IsFree(std::int32_t sector) const {
  const std::vector<FreeRun> runs = FreeRuns(disc_);
  return std::any_of(runs.begin(), runs.end(),
                     [&](const FreeRun& run) { return sector >= run.Start && sector < run.End(); });
}

bool Ownership::IsInExtent(std::int32_t sector) const {
  const auto above =
      std::upper_bound(extents_.begin(), extents_.end(), sector,
                       [](std::int32_t s, const Extent& extent) { return s < extent.Start; });
  if (above == extents_.begin()) return false;
  const Extent& extent = *(above - 1);
  return sector - extent.Start < extent.Sectors;
}

bool Ownership::EmptyFileLeavesOwner(std::int32_t sector) {
  if (!noted_ || notedAt_ != disc_.Compactions) NoteOwners();
  if (!canBeTold_ || sector < kFirstFreeSector) return true;
  const auto more = moreEmptyFiles_.find(sector);
  const bool another = more != moreEmptyFiles_.end() && more->second-- > 0;
  return another || IsFree(sector) || IsInExtent(sector);
}

}  // namespace sectorbox
