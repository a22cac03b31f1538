#include "cli/Dispatch.h"

namespace sectorbox::cli {

std::vector<Command> PictureCommands() {
  return {};
}

}  // namespace sectorbox::cli
