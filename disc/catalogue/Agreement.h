#pragma once

#include <string>

#include "disc/store/Disc.h"

namespace sectorbox {

// How the text of a contradiction ends if the disc's size is too small.
inline constexpr const char* kPastTheEnd = "runs past the end of the disc";
// The contradiction of something that isn't a disc at all.
inline constexpr const char* kNoRoot = "$: is no directory: the mark at its start is missing";
// The contradiction of a disc that lists more objects than any disc has room for.
inline constexpr const char* kTooMuch = "$: lists more than the disc has room for";
// What the user is told before the contradiction, when a change is refused.
inline constexpr const char* kDamagedDiscMessage = "Cannot Change A Damaged Disc : ";

// Compares the map of the open disc with its catalogue, once after each opening. Gives the first
// place where changing the disc would lose something, in the words of the check, such as
// "$.GAMES.ELITE: overlaps free run 0":
// - the root isn't a directory;
// - more objects than kMaxObjects own sectors;
// - the disc's size, as the map tells it, ends before something that is in use;
// - a free run covers something that is in use, or another free run.
// Empty if there is no such place. Anything else that may be wrong with a disc is no reason to
// leave it alone. The comparison also finds out whether objects overlap each other
// (Disc::ObjectsOverlap).
[[nodiscard]] const std::string& FindContradiction(Disc& disc);

}  // namespace sectorbox
