#pragma once

#include <string>

#include "disc/store/Disc.h"

// Files and partitions that hold no ADFS disc: they have no directory's mark where the root
// directory of a disc begins.
namespace sectorbox {

// True if the open disc is an ADFS disc.
[[nodiscard]] bool IsAdfsDisc(Disc& disc);
// True if a host file holds an ADFS disc, sector after sector. HostError if it can't be read.
[[nodiscard]] bool FileHoldsAdfsDisc(const std::string& fileName);
// What the user is told of it: "photo.jpg Is No ADFS Disc". path is the file, or the name of the
// partition, of which the last part is named.
[[nodiscard]] std::string NoAdfsDiscText(const std::string& path);

}  // namespace sectorbox
