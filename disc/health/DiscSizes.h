#pragma once

#include <vector>

#include "disc/health/Fault.h"
#include "disc/store/Disc.h"

namespace sectorbox {

// Warnings of a disc whose size the BBC or its interface can't use: the BBC can't write to a disc
// of this size, or the companion of a .dat tells of fewer sectors than the disc has.
[[nodiscard]] std::vector<Fault> FindSizeFaults(Disc& disc);

}  // namespace sectorbox
