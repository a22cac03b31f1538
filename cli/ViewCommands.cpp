#include "cli/Dispatch.h"

namespace sectorbox::cli {

std::vector<Command> ViewCommands() {
  return {};
}

}  // namespace sectorbox::cli
