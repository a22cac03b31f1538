#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "disc/store/Disc.h"

// Changing the recorded size of an image.
namespace sectorbox {

// How many tracks a disc of that many megabytes has, to the nearest whole number. text is a decimal
// number, which may have a fraction; none for anything else, and for numbers out of all reason.
[[nodiscard]] std::optional<std::int32_t> TracksOfMegabytes(const std::string& text);

// Lets the user choose an image (ChooseImageFile) and resizes it.
void ResizeImage(Disc& disc, std::int32_t tracks, std::int32_t heads, std::int32_t sectors);
// Changes the size field and the last free run of an image, and opens it. The file keeps its
// length, and its companion stays. If the new size is below one sector or too large for the three
// bytes of the size field, the user gets the message "Disc Size Is Out Of Range" and the file stays
// as it is. The user gets a note if the BBC can't write to a disc of the new size, one if the disc
// holds more than that, and one if its map doesn't fit the new size: that of a disc whose last free
// run doesn't lie at its end. Changes are then refused (disc/catalogue/Agreement.h). HostError if
// the file has no whole map.
void ResizeImageFile(Disc& disc, const std::string& fileName, std::int32_t tracks,
                     std::int32_t heads, std::int32_t sectors);

}  // namespace sectorbox
