#pragma once

#include <string>

#include "disc/store/Disc.h"

// The questions around a disc: unsaved changes, which file to open, which to write.
namespace sectorbox {

// Asks about unsaved changes. It clears ImageChanged first, so that the question comes only once,
// also after No and after a cancelled dialog. For a disc in memory it asks "Save your changes now
// ?" with the title "Changes will be lost", and saves if the answer is Yes. A .dat or a card is
// written through and is closed without a question. After a HostError ImageChanged is set again:
// the changes are in no file, and the caller must not go on as if they were.
void QuerySaveChanges(Disc& disc);

// Runs QuerySaveChanges if there are changes, then the open dialog. Gives the path. An empty text
// means that the user cancelled, or chose a file that doesn't exist and saw the message
// "File Not Found : " with its name.
[[nodiscard]] std::string ChooseImageFile(Disc& disc);

}  // namespace sectorbox
