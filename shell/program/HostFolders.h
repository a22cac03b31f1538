#pragma once

#include <string>

// The host's temporary folder. A drag puts there the files that it offers.
namespace sectorbox {

// The system's temporary folder with a separator at its end; empty if there is none.
std::string GetTempFolder();

// Deletes a folder with all that is in it, as far as that can be done; failures are ignored. Links
// are removed and never followed.
void RemoveHostTree(const std::string& folder);

}  // namespace sectorbox
