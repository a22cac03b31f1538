#pragma once

#include <cstdint>

#include "link/wire/Link.h"

namespace sectorbox {

// Writes an image file that the user is asked for onto a drive of the BBC (0, 1, 4 or 5): every
// sector, or with dataOnly what the image's own map doesn't list as free. The kind comes from the
// name's extension. A floppy image must fit the drive; a .dat is sent whatever its size. What the
// file lacks at its end goes out as zeros.
//
// Failures as with ReceiveImage, but Abort always tells the server (ESC, 2), which may be in the
// middle of a stream.
void SendImage(Link& link, std::int32_t drive, bool dataOnly);

}  // namespace sectorbox
