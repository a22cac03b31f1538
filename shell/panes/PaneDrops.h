#pragma once

#include <QMimeData>
#include <string>
#include <vector>

#include "disc/store/Disc.h"

// Drags and drops of the panes. If the user drags from one pane to the other, that is a drag out
// and then a drop in. So it is always a copy.
namespace sectorbox {

class Panes;

// Each exports the objects for a drag that begins now, and gives their paths. A drag on the list
// takes the selected rows.
[[nodiscard]] std::vector<std::string> ExportForListDrag(Panes& panes);
// A drag on the tree takes the current directory, whatever node the pointer is on. The root has no
// folder of its own: its rows are taken one by one, and no row is selected afterwards.
[[nodiscard]] std::vector<std::string> ExportForTreeDrag(Panes& panes);
// Runs the drag until the user releases the button. Does nothing if there are no paths.
void RunDrag(QWidget& source, const std::vector<std::string>& paths);

// Adds what was dropped to the current directory.
void DropOnList(Panes& panes, Disc& disc, const QMimeData& data);
// Adds the files to the directory of the drop highlight. The highlight is cleared in every case.
// The list stays as it was. The target's subdirectories are appended to the tree once more, so
// those that it already showed stand there twice until the next rebuild.
void DropOnTree(Panes& panes, Disc& disc, const QMimeData& data);

}  // namespace sectorbox
