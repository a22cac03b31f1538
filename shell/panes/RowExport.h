#pragma once

#include <string>

#include "disc/catalogue/Catalogue.h"
#include "disc/exchange/HostExchange.h"

namespace sectorbox {

// Writes what the row names, with its sidecar, to hostPath: a file, or a directory with all that is
// in it. HostError, naming hostPath, for a length that no file of the BBC's could have (above
// 0x7FFFFFFF).
void ExportRow(Disc& disc, const ListRow& row, const std::string& hostPath);

}  // namespace sectorbox
