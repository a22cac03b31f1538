#pragma once

#include <QMimeData>
#include <string>
#include <vector>

#include "disc/store/Disc.h"

// Drags and drops of the panes. A drag from one pane to the other is a drag out and then a drop in,
// and so it is always a copy.
namespace sectorbox {

class Panes;

// Each exports what a drag offers that begins now, and gives its paths. A drag on the list takes
// the selected rows.
[[nodiscard]] std::vector<std::string> ExportForListDrag(Panes& panes);
// A drag on the tree takes the current directory, whichever node the pointer was on. The root has
// no folder of its own: its rows are taken one by one, and no row is selected afterwards.
[[nodiscard]] std::vector<std::string> ExportForTreeDrag(Panes& panes);
// The drag itself, until the user lets go. Without paths there is none.
void RunDrag(QWidget& source, const std::vector<std::string>& paths);

// Adds what was dropped to the current directory.
void DropOnList(Panes& panes, Disc& disc, const QMimeData& data);
// Adds it to the directory of the drop highlight, and clears the highlight in every case. The list
// stays as it was. The target's subdirectories are appended to the tree once more, so those that it
// already showed stand there twice until the next rebuild.
void DropOnTree(Panes& panes, Disc& disc, const QMimeData& data);

}  // namespace sectorbox
