#pragma once

#include "disc/catalogue/Catalogue.h"
#include "disc/store/Disc.h"
#include "viewers/text/TextView.h"

namespace sectorbox {

// A Wordwise document as it would come out of the printer: filled, wrapped, justified, cut into
// pages. A file whose Load and Exec aren't both FFFFFFFF gives one line that says so. An unknown
// command shows "Unrecognised Command " and its two letters in a box. A close request takes effect
// at the end of the document, but no box is shown after it.
// The view's Style is reset at the start and left as the document's last commands set it.
void ShowWordwise(Disc& disc, const ListRow& row, TextView& view);

}  // namespace sectorbox
