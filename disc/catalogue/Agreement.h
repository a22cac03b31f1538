#pragma once

#include <string>

#include "disc/store/Disc.h"

namespace sectorbox {

// Compares the map of the open disc with its catalogue, once after each opening. Gives the first
// place where changing the disc would lose something, in the words of the check, such as
// "$.GAMES.ELITE: overlaps free run 0":
// - the root isn't a directory;
// - the disc's size, as the map tells it, ends before something that is in use;
// - a free run covers something that is in use, or another free run.
// Empty if there is no such place. Anything else that may be wrong with a disc is no reason to
// leave it alone.
[[nodiscard]] const std::string& FindContradiction(Disc& disc);

}  // namespace sectorbox
