#pragma once

#include <functional>
#include <string>
#include <vector>

#include "disc/store/Disc.h"

// Looking a disc over for what the BBC's own filing system would refuse, and for what puts data at
// risk. Reads only.
namespace sectorbox {

struct Fault {
  bool IsError = false;  // else a warning
  std::string Place;     // "$.DIR.FILE", "run 3", "sector 0"
  std::string Text;
};

std::vector<Fault> CheckDisc(Disc& disc);

}  // namespace sectorbox
