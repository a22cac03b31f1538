#pragma once

#include <cstdint>
#include <string>

#include "link/wire/Link.h"

namespace sectorbox {

// Copies one drive of the BBC (0, 1, 4 or 5) into an image file that the user is asked for. It
// copies every sector, or with dataOnly those that the drive's own map doesn't list as free. An
// existing file is written over in place and never truncated, so that a copy can be resumed. Where
// a sector can't be read, the file keeps what it held.
//
// True only if the procedure ran to its end, also if it ended with the message of a mismatch.
// fileName is the image then. A chunk that failed is tried again without limit; the user can press
// Abort, and a link whose silence is watched (Silence.h) ends it with a box. If the port or the
// file fails, a box shows the system's words, and the file stays as far as it got.
[[nodiscard]] bool ReceiveImage(Link& link, std::int32_t drive, bool dataOnly,
                                std::string& fileName);

}  // namespace sectorbox
