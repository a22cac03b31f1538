#pragma once

#include <string>

namespace sectorbox::cli {

// Starts the window program, sectorbox, which lies beside sbx, on an image, and doesn't wait for
// it. HostError when it can't be started.
void StartWindow(const std::string& image);

}  // namespace sectorbox::cli
