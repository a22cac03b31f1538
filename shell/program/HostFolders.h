#pragma once

#include <string>

// The host's temporary folder, where drags put what they offer.
namespace sectorbox {

// The system's temporary folder with a separator at its end; empty when there is none.
std::string GetTempFolder();

// Deletes a folder with all that is in it, as far as it can; failures are ignored. Links are
// removed and never followed.
void RemoveHostTree(const std::string& Folder);

}  // namespace sectorbox
