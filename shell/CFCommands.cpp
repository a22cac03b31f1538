#include "shell/CFCommands.h"

#include "shell/frmMain.h"

namespace sectorbox {

CFCommands::CFCommands(frmMain&) {}

}  // namespace sectorbox
