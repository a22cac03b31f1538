#pragma once

#include <string>

#include "disc/catalogue/Catalogue.h"
#include "disc/exchange/HostExchange.h"

namespace sectorbox {

// Writes the row's file, or its directory with everything in it, to hostPath, with its sidecar. If
// the length is one that no file of the BBC can have (above 0x7FFFFFFF), it throws a HostError that
// names hostPath.
void ExportRow(Disc& disc, const ListRow& row, const std::string& hostPath);

}  // namespace sectorbox
