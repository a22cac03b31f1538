#pragma once

#include <QString>

#include "disc/store/Disc.h"

namespace sectorbox {

// Keeps the open disc if the program has to end in the middle of an operation. A disc that is only
// in memory and has unsaved changes is written, whole, to a new file beside the settings, in the
// form in which it would have been saved. A .dat or a card is closed, which writes back its last
// blocks. The result is the sentence that tells the user where the file is, or why the disc
// couldn't be kept; it is empty if there was nothing to keep.
[[nodiscard]] QString KeepUnsavedDisc(Disc& disc);

}  // namespace sectorbox
