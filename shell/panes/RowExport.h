#pragma once

#include <string>

#include "disc/catalogue/Catalogue.h"
#include "disc/exchange/HostExchange.h"

namespace sectorbox {

// Writes the row's file, or its directory with everything in it, to hostPath, with its sidecar.
// Throws a HostError that names hostPath for a length that no file of the BBC can have (above
// 0x7FFFFFFF).
void ExportRow(Disc& disc, const ListRow& row, const std::string& hostPath);

}  // namespace sectorbox
