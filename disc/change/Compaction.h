#pragma once

#include "disc/store/Disc.h"

// Closing up the holes on a disc.
namespace sectorbox {

inline constexpr const char* kCannotCompactMessage = "Cannot Compact A Damaged Disc";

// Moves every object down to the lowest free place, so that one free run remains. Sectors held in
// TrackedSectors follow, and the host is told through DirectoriesMoved. A disc whose directories
// lead in a circle or lack their mark, or whose objects overlap or need more room than there is,
// gets the message and is left as it is.
void CompactDisc(Disc& disc);
// The same without being asked, when the free list grows long: a damaged disc is only noted.
void CompactAfterRelease(Disc& disc);

}  // namespace sectorbox
