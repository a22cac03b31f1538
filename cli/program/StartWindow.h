#pragma once

#include <string>

namespace sectorbox::cli {

// Starts the window program on an image and doesn't wait for it. The window program is the file
// "sectorbox" in the folder of sbx. HostError if it can't be started.
void StartWindow(const std::string& image);

}  // namespace sectorbox::cli
