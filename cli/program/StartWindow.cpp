#include "cli/program/StartWindow.h"

#include "cli/program/ProgramFolder.h"
#include "disc/host/HostPath.h"
#include "disc/host/HostProcess.h"

namespace sectorbox::cli {

void StartWindow(const std::string& image) {
  const std::string program = JoinHostPath(ProgramFolder(), "sectorbox");
  // The program takes the first and the last character of its argument for quotes and drops them.
  LaunchProgram(program, {"\"" + AbsoluteHostPath(image) + "\""});
}

}  // namespace sectorbox::cli
