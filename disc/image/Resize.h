#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "disc/store/Disc.h"

// Changing the recorded size of an image.
namespace sectorbox {

// Tracks of a disc of that many megabytes (a decimal number, fractions allowed), to the nearest
// whole number; none for anything that isn't a number.
[[nodiscard]] std::optional<std::int32_t> TracksOfMegabytes(const std::string& text);

// Asks which image with ChooseImageFile, changes its size field and last free run, and opens it.
void ResizeImage(Disc& disc, std::int32_t Tracks, std::int32_t Heads, std::int32_t Sectors);
// The same for a file that is already chosen. A size of no sectors, or of more than the three bytes
// of the size field hold, gets the message "Disc Size Is Out Of Range" and leaves the file alone.
// The file keeps its length, and its companion stays. A file without a whole map is a HostError.
void ResizeImageFile(Disc& disc, const std::string& FileName, std::int32_t Tracks,
                     std::int32_t Heads, std::int32_t Sectors);

}  // namespace sectorbox
