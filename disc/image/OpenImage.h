#pragma once

#include <cstdint>
#include <string>

#include "disc/store/Disc.h"

// Deciding what a file is, and opening it.
namespace sectorbox {

// Opens an image: asks about unsaved changes first, keeps the path as the setting "Root", takes the
// kind from the size field of the map and the extension .adl, and rebuilds the panes. No image is
// refused; what isn't an ADFS floppy opens as a hard disc image. A file that can't be read is a
// HostError, and the disc that was open stays open.
void OpenImage(Disc& disc, const std::string& FileName);

// Opens a partition of a card.
// Name is the device, a comma and the partition digit, such as "/dev/sdb,0".
void OpenCFPartition(Disc& disc, const std::string& Name);

}  // namespace sectorbox
