#pragma once

#include <cstdint>

#include "disc/Disc.h"

namespace sectorbox {

// True if a free run, the map, the root, or any file or directory on the disc holds the sector;
// also if the directories are too damaged to tell. Walks the whole disc.
//
// Here every file owns a sector, an empty one too. To the BBC an empty file owns none: the sector
// that its entry states may belong to anything else, and mustn't come free with it.
bool SectorIsOwned(Disc& disc, std::int32_t sector);

}  // namespace sectorbox
