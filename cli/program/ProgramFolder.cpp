#include "cli/program/ProgramFolder.h"

#include <filesystem>

#include "disc/host/HostError.h"

namespace sectorbox::cli {

std::string ProgramFolder() {
  std::error_code failed;
  const auto self = std::filesystem::read_symlink("/proc/self/exe", failed);
  if (failed) throw HostError("/proc/self/exe", failed.message());
  return self.parent_path().string();
}

}  // namespace sectorbox::cli
