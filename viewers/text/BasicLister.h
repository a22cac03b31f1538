#pragma once

#include "disc/catalogue/Catalogue.h"
#include "disc/store/Disc.h"
#include "viewers/text/TextView.h"

namespace sectorbox {

// A listing of a tokenised BBC BASIC program. Each line of the program is one text for the view. A
// file that doesn't begin with a carriage return gives one line that says so. Any other file is
// listed, whatever it holds. If the file's end cuts a line off, the listing reads on in the sectors
// behind the file, up to the image's end. A close request takes effect at the next line of the
// program.
void Show_Basic(Disc& disc, const ListRow& row, TextView& view);

}  // namespace sectorbox
