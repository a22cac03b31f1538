#include "disc/change/Ownership.h"

#include <algorithm>

#include "disc/catalogue/Directories.h"

namespace sectorbox {

using namespace format;

// Collects what the directories list. A directory without its mark ends the walk: nobody can tell
// what it listed.
class Ownership::Collector : public DirectoryVisitor {
 public:
  explicit Collector(Ownership& owners) : owners_(owners) {}

  Walk Enter(const WalkStep& at, const Directory& directory) override {
    owners_.extents_.push_back({at.Sector, kDirSectors});
    return directory.HasMark() ? Walk::kOn : Walk::kStop;
  }

  Walk Meet(const WalkStep&, std::int32_t, const Entry& entry) override {
    if (entry.IsDirectory()) return Walk::kOn;
    if (entry.Length() == 0) {
      ++owners_.emptyFiles_[entry.Start()];
    } else {
      owners_.extents_.push_back({entry.Start(), entry.Sectors()});
    }
    return Walk::kOn;
  }

 private:
  Ownership& owners_;
};

void Ownership::NoteOwners() {
  noted_ = true;
  notedAt_ = disc_.Compactions;
  extents_.clear();
  emptyFiles_.clear();
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
  const bool another = --emptyFiles_[sector] > 0;
  return another || IsFree(sector) || IsInExtent(sector);
}

}  // namespace sectorbox
