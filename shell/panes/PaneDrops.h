#pragma once

#include <QMimeData>
#include <string>
#include <vector>

#include "disc/store/Disc.h"

// Drags and drops of the panes. A drag from one pane to the other is nothing special: it is a drag
// out followed by a drop in, and so always a copy.
namespace sectorbox {

class Panes;

// What a drag that begins now on the list offers: the selected rows.
std::vector<std::string> ExportForListDrag(Panes& panes);
// And on the tree: the current directory, whichever node the pointer was on. The root has no folder
// of its own: its rows are taken one by one, after which no row is selected.
std::vector<std::string> ExportForTreeDrag(Panes& panes);
// The same, and then the drag itself, until the user lets go.
void DragList(Panes& panes);
void DragTree(Panes& panes);

// Adds what was dropped to the current directory.
void DropOnList(Panes& panes, Disc& disc, const QMimeData& data);
// To the directory of the drop highlight, which is cleared in every case. The list stays as it was;
// the target's subdirectories are appended to the tree once more, so those that it already showed
// stand there twice until the next rebuild.
void DropOnTree(Panes& panes, Disc& disc, const QMimeData& data);

}  // namespace sectorbox
