#include <string>
#include <vector>

#include "cli/program/Dispatch.h"
#include "disc/host/HostSignals.h"

int main(int argc, char** argv) {
  sectorbox::MakeFileLimitAnError();
  sectorbox::RemoveTemporaryFilesAtSignals();
  return sectorbox::cli::RunSbx(std::vector<std::string>(argv + 1, argv + argc));
}
