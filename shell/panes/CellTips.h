#pragma once

#include <QString>

#include "disc/catalogue/Catalogue.h"

namespace sectorbox {

// What the hexadecimal number of a cell is in decimal, and what an address means on the BBC, where
// that is known: "32803 (&8023 in the BBC itself): BASIC". Empty for the cells
// that hold no number, and for a directory's.
[[nodiscard]] QString TipOfCell(const ListRow& row, int column);

}  // namespace sectorbox
