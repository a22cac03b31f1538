#include "shell/ViewCommands.h"

#include "shell/frmMain.h"

namespace sectorbox {

ViewCommands::ViewCommands(frmMain&) {}

}  // namespace sectorbox
