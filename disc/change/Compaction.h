#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "disc/store/Disc.h"

// Closing up the holes on a disc, and changing the recorded size of an image.
namespace sectorbox {

inline constexpr const char* kCannotCompactMessage = "Cannot Compact A Damaged Disc";

// Moves every object down to the lowest free place, so that one free run remains. Sectors held in
// TrackedSectors follow, and the host is told through DirectoriesMoved. A disc whose directories
// lead in a circle or lack their mark, or whose objects overlap or need more room than there is,
// gets the message and is left as it is.
void CompactDisc(Disc& disc);
// The same without being asked, when the free list grows long: a damaged disc is only noted.
void CompactAfterRelease(Disc& disc);

// Tracks of a disc of that many megabytes (a decimal number, fractions allowed), to the nearest
// whole number; none for anything that isn't a number.
std::optional<std::int32_t> TracksOfMegabytes(const std::string& text);

// Asks which image with ChooseImageFile, changes its size field and last free run, and opens it.
void ResizeImage(Disc& disc, std::int32_t Tracks, std::int32_t Heads, std::int32_t Sectors);
// The same for a file that is already chosen. A size of no sectors, or of more than the three bytes
// of the size field hold, gets the message "Disc Size Is Out Of Range" and leaves the file alone.
// The file keeps its length, and its companion stays. A file without a whole map is a HostError.
void ResizeImageFile(Disc& disc, const std::string& FileName, std::int32_t Tracks,
                     std::int32_t Heads, std::int32_t Sectors);

}  // namespace sectorbox
