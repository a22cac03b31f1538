#include "shell/PictureCommands.h"

#include "shell/frmMain.h"

namespace sectorbox {

PictureCommands::PictureCommands(frmMain&) {}

}  // namespace sectorbox
