#pragma once

#include "disc/catalogue/Catalogue.h"
#include "disc/store/Disc.h"
#include "viewers/text/TextView.h"

// The two plain views of a file. They don't interpret it and have no message. A file of length 0
// gives an empty view.
namespace sectorbox {

// The file's bytes as lines of text. A carriage return ends a line; a line feed is dropped, so a
// file with line feeds alone shows as one long line. Every other byte passes as it is. A line
// of more than a megabyte comes in several texts. A close request takes effect at the end of the
// file.
void ShowText(Disc& disc, const ListRow& row, TextView& view);

// A hexadecimal dump, sixteen bytes a line: the offset in the file in six digits (the last six of a
// longer one), the bytes, and in a column of their own their characters without their top bits. A
// directory's row shows its 1280 bytes. A close request takes effect at the next line.
void ShowHex(Disc& disc, const ListRow& row, TextView& view);

}  // namespace sectorbox
