#include "shell/XferCommands.h"

#include "shell/frmMain.h"

namespace sectorbox {

XferCommands::XferCommands(frmMain&) {}

void XferCommands::SetUpPort() {}

void XferCommands::ClosePort() {}

void XferCommands::CloseTrace() {}

}  // namespace sectorbox
