#pragma once

#include <string>

#include "disc/store/Disc.h"

// The questions around a disc: unsaved changes, which file to open, which to write.
namespace sectorbox {

// Clears ImageChanged, so that the question comes once, also after No or a cancelled dialog. A disc
// in memory: asks "Save your changes now ?" ("Changes will be lost") and saves on Yes. A .dat or a
// card, which is written through, is closed without a question. A HostError sets the flag again:
// the changes haven't reached a file, and whoever asked must not go on as if they had.
void QuerySaveChanges(Disc& disc);

// QuerySaveChanges if there are changes, then the open dialog. Empty when cancelled, and after
// "File Not Found : " and the name when there is no such file.
std::string ChooseImageFile(Disc& disc);

}  // namespace sectorbox
