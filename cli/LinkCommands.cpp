#include "cli/Dispatch.h"

namespace sectorbox::cli {

std::vector<Command> LinkCommands() {
  return {};
}

}  // namespace sectorbox::cli
