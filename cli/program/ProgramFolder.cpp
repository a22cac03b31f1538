#include "cli/program/ProgramFolder.h"

#include "disc/host/HostPath.h"
#include "disc/host/HostProcess.h"

namespace sectorbox::cli {

std::string ProgramFolder() {
  return HostFolderOf(OwnProgramFile());
}

}  // namespace sectorbox::cli
