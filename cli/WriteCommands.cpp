#include "cli/Dispatch.h"

namespace sectorbox::cli {

std::vector<Command> WriteCommands() {
  return {};
}

}  // namespace sectorbox::cli
