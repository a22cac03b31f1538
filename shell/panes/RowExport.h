#pragma once

#include <string>

#include "disc/catalogue/Catalogue.h"
#include "disc/exchange/HostExchange.h"

namespace sectorbox {

// Gives what an export wants to know of a file row. The row's own texts go into the sidecar. Throws
// a HostError that names hostPath for a length that no file of the BBC can have (above 0x7FFFFFFF).
[[nodiscard]] ExportedFile FileOfRow(const ListRow& row, const std::string& hostPath);

// Writes the row's file, or its directory with everything in it, to hostPath, with its sidecar.
void ExportRow(Disc& disc, const ListRow& row, const std::string& hostPath);

}  // namespace sectorbox
