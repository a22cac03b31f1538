#include "cli/Dispatch.h"

namespace sectorbox::cli {

std::vector<Command> CardCommands() {
  return {};
}

}  // namespace sectorbox::cli
