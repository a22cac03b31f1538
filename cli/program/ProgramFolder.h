#pragma once

#include <string>

namespace sectorbox::cli {

// The folder that this program's file lies in. The companion files and the window program lie there
// too. HostError if the host won't tell.
std::string ProgramFolder();

}  // namespace sectorbox::cli
