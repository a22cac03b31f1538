#pragma once

#include <algorithm>
#include <cstdint>

#include "disc/store/Disc.h"

namespace sectorbox {

// The start sector of a directory that an operation goes on working in. Releasing sectors can
// compact the whole disc (at 80 free runs), which moves directories. A tracked sector then takes
// the directory's new place, so that no operation works on a place that a directory has left. disc
// outlives it.
class TrackedSector {
 public:
  TrackedSector(Disc& disc, std::int32_t sector) : disc_(disc), sector_(sector) {
    disc_.TrackedSectors.push_back(&sector_);
  }
  ~TrackedSector() {
    auto& all = disc_.TrackedSectors;
    all.erase(std::remove(all.begin(), all.end(), &sector_), all.end());
  }
  TrackedSector(const TrackedSector&) = delete;
  TrackedSector& operator=(const TrackedSector&) = delete;

  operator std::int32_t() const { return sector_; }

 private:
  Disc& disc_;
  std::int32_t sector_;
};

}  // namespace sectorbox
