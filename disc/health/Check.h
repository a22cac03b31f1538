#pragma once

#include <cstddef>
#include <functional>
#include <vector>

#include "disc/health/Fault.h"
#include "disc/store/Disc.h"

// Looking for faults of a disc: what the BBC's own filing system would refuse, and what puts data
// at risk. Nothing on the disc changes.
namespace sectorbox {

// So many faults of a disc are told. If there are more, one more Fault tells how many.
inline constexpr std::size_t kMaxFaults = 10000;

// Tells the faults of the open disc: those of the map, then those of the directories in the order
// of the walk, then overlaps and holes in the order of the sectors, then its size. None for a sound
// disc. Whatever the disc holds, the check keeps less than 48 MB in memory, and no fault that it
// has told.
void CheckDisc(Disc& disc, const std::function<void(const Fault&)>& tell);
// All that are told, in a list.
[[nodiscard]] std::vector<Fault> CheckDisc(Disc& disc);

}  // namespace sectorbox
