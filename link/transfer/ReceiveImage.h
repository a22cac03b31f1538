#pragma once

#include <cstdint>
#include <string>

#include "link/wire/Link.h"

namespace sectorbox {

// Copies one drive of the BBC (0, 1, 4 or 5) into an image file that the user is asked for: every
// sector, or with dataOnly what the drive's own map doesn't list as free. An existing file is
// written over in place and never truncated, so that a copy can be resumed; sectors that can't be
// read keep what the file held.
//
// True only when the procedure ran to its end, also if it ended with the message of a mismatch;
// fileName is then the image. A failed chunk is tried again without limit; the way out is Abort.
// A failing port or file is shown in the system's words; the file stays as far as it got.
bool ReceiveImage(Link& link, std::int32_t drive, bool dataOnly, std::string& fileName);

}  // namespace sectorbox
