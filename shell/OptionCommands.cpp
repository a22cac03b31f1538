#include "shell/OptionCommands.h"

#include "shell/frmMain.h"

namespace sectorbox {

OptionCommands::OptionCommands(frmMain& window) {
  for (const char* name : {"mnuOptionsDelete", "mnuOptionsOverwrite", "mnuOptionsEmpty",
                           "mnuOptionsPad", "mnuOptionsPlayWave", "mnuOptionsAutoLoad",
                           "mnuOptionsInterleave", "mnuOptionsViewAs", "mnuXferCBW"}) {
    // A checkable entry has flipped itself by the time its command runs.
    window.OnCommand(name, [] {});
  }
}

}  // namespace sectorbox
