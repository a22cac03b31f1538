#pragma once

#include <string>

#include "disc/store/Disc.h"

// Deciding what a file is, and opening it.
namespace sectorbox {

// Opens an image. It first asks about unsaved changes, keeps the path as the setting "Root", and in
// the end has the panes filled anew. The size field of the map and the extension .adl decide which
// kind of image it is. No image is refused: a file that isn't an ADFS floppy opens as a hard disc
// image. HostError if the file can't be read; the disc that was open then stays open.
void OpenImage(Disc& disc, const std::string& fileName);

// Opens a partition of a card. name is the device, a comma and the partition digit, such as
// "/dev/sdb,0". A device that can't be opened is no error here: see DiscImg::DeviceIsOpen.
void OpenCFPartition(Disc& disc, const std::string& name);

}  // namespace sectorbox
