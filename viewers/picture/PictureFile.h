#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "viewers/picture/Picture.h"

// Pictures as files.
namespace sectorbox {

// A Windows bitmap: 24 bits a pixel, not compressed, rows from the bottom.
std::vector<std::uint8_t> EncodeBmp(const Picture& picture);
// A PNG of 8 bits a channel, no alpha. HostError if the encoder fails, which an empty picture makes
// it do.
std::vector<std::uint8_t> EncodePng(const Picture& picture);

// Writes the file at path, replacing one that is there. HostError if that fails.
void SaveBmp(const Picture& picture, const std::string& path);
// The same, as a PNG where path ends in ".png" in any case of letters, else as a Windows bitmap.
void SavePicture(const Picture& picture, const std::string& path);

}  // namespace sectorbox
