#pragma once

#include <QString>

#include "disc/store/Disc.h"

namespace sectorbox {

// When the program must end in the middle of things: writes a disc that is only in memory and has
// unsaved changes to a new file beside the settings, in the form in which it would have been saved,
// whole. Gives the sentence that tells the user where it is (or why it couldn't be kept); empty if
// there was nothing to keep. A .dat or a card is closed, which writes back its last blocks.
QString KeepUnsavedDisc(Disc& disc);

}  // namespace sectorbox
