#pragma once

#include <cstdint>

#include "link/wire/Link.h"

namespace sectorbox {

// Writes an image file that the user is asked for onto a drive of the BBC (0, 1, 4 or 5). It sends
// every sector, or with dataOnly those that the image's own map doesn't list as free. The name's
// extension tells the kind of image. A floppy image must fit the drive; a .dat is sent whatever its
// size. If the file is too short, the bytes that it lacks go out as zeros.
//
// Failures are treated as ReceiveImage treats them. But an Abort always tells the server (ESC, 2),
// as it may be in the middle of a stream.
void SendImage(Link& link, std::int32_t drive, bool dataOnly);

}  // namespace sectorbox
