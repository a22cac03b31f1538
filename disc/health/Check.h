#pragma once

#include <string>
#include <vector>

#include "disc/store/Disc.h"

// Looking for faults of a disc: what the BBC's own filing system would refuse, and what puts data
// at risk. Nothing on the disc changes.
namespace sectorbox {

struct Fault {
  bool IsError = false;  // else a warning
  std::string Place;     // "$.DIR.FILE", "run 3", "sector 0"
  std::string Text;      // what is wrong there
};

// All faults of the open disc: those of the map, then those of the directories in the order of the
// walk, then overlaps and holes in the order of the sectors, then its size. None for a sound disc.
[[nodiscard]] std::vector<Fault> CheckDisc(Disc& disc);

}  // namespace sectorbox
