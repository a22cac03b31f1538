#include "cli/Dispatch.h"

namespace sectorbox::cli {

std::vector<Command> ReadCommands() {
  return {};
}

}  // namespace sectorbox::cli
