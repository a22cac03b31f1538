#pragma once

#include "disc/catalogue/Catalogue.h"
#include "disc/store/Disc.h"
#include "viewers/text/TextView.h"

namespace sectorbox {

// A listing of a tokenised BBC BASIC program, a line of it a text. A file that doesn't begin with
// a carriage return gives one line that says so. Anything else lists, whatever it holds; a line
// that the file's end cuts off is read on from the sectors behind it, up to the image's end.
// A close request takes effect at the next line of the program.
void Show_Basic(Disc& disc, const ListRow& row, TextView& view);

}  // namespace sectorbox
