#pragma once

#include <cstdint>
#include <string>

#include "disc/Disc.h"

// Closing up the holes on a disc, and changing the recorded size of an image.
namespace sectorbox {

// Moves every object down to the lowest free place, so that one free run remains. Sectors held in
// TrackedSectors follow, and the host is told through DirectoriesMoved.
void CompactDisc(Disc& disc);

// Asks which image with ChooseImageFile, changes its size field and last free run, and opens it.
void ResizeImage(Disc& disc, std::int32_t Tracks, std::int32_t Heads, std::int32_t Sectors);
// The same for a file that is already chosen.
void ResizeImageFile(Disc& disc, const std::string& FileName, std::int32_t Tracks,
                     std::int32_t Heads, std::int32_t Sectors);

}  // namespace sectorbox
