#pragma once

#include "disc/change/Outcome.h"
#include "disc/store/Disc.h"

// Closing up the holes on a disc.
namespace sectorbox {

inline constexpr const char* kCannotCompactMessage = "Cannot Compact A Damaged Disc";

// Moves every object down to the lowest free place, so that one free run remains. The entry that
// lists an object follows it, also if another entry has the same name, and each directory names
// the one that lists it as its parent then. Each
// TrackedSector follows its directory, and the host learns of the moves through DirectoriesMoved.
// A damaged disc stays as it is, and the user sees kCannotCompactMessage. A disc counts as damaged
// if its directories lead in a circle or lack their mark, or if its objects overlap or need more
// room than there is.
[[nodiscard]] Outcome CompactDisc(Disc& disc);
// The same, but the engine starts it by itself when the free list grows long. For a damaged disc
// the message is then only a note.
void CompactAfterRelease(Disc& disc);

}  // namespace sectorbox
