#pragma once

class QMenuBar;

namespace sectorbox {

// Draws the arrow of the menus that the bar has no room for in the palette's text colour. The
// style's own arrow is black, which nobody sees in a dark palette.
void ShowOverflowArrow(QMenuBar& bar);

}  // namespace sectorbox
