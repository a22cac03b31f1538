#pragma once

#include <string>

namespace sectorbox::cli {

// The folder that this program's file lies in, with the companion files and the window program
// beside it. HostError when the system won't tell.
std::string ProgramFolder();

}  // namespace sectorbox::cli
