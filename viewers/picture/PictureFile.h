#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "viewers/picture/Picture.h"

// Pictures as files.
namespace sectorbox {

// A Windows bitmap: 24 bits a pixel, not compressed, rows from the bottom.
std::vector<std::uint8_t> EncodeBmp(const Picture& picture);
// A PNG of 8 bits a channel, no alpha. HostError if the encoder fails, as it does for an empty
// picture.
std::vector<std::uint8_t> EncodePng(const Picture& picture);

// Writes the file at path, replacing one that is there. HostError if that fails.
void SaveBmp(const Picture& picture, const std::string& path);
// The same. The file is a PNG if path ends in ".png", in upper or lower case, and else a Windows
// bitmap.
void SavePicture(const Picture& picture, const std::string& path);

}  // namespace sectorbox
