#include "shell/panes/PaneDrops.h"

#include <QDrag>

#include "disc/catalogue/Adfs.h"
#include "disc/exchange/HostExchange.h"
#include "disc/host/HostError.h"
#include "disc/host/HostFile.h"
#include "disc/store/TrackedSector.h"
#include "shell/panes/Panes.h"
#include "shell/program/Icons.h"
#include "toolkit/FileLists.h"

namespace sectorbox {
namespace {

// What hangs at the pointer: a file or a folder, as the first path is.
void ShowDragged(QDrag& drag, const std::string& first) {
  constexpr int kSide = 32;
  const QIcon icon = LoadIcon(HostFolderExists(first) ? "closed" : "leaf");
  drag.setPixmap(icon.pixmap(kSide, kSide));
  drag.setHotSpot({kSide / 4, kSide / 4});
}

void RunDrag(QWidget& source, const std::vector<std::string>& paths) {
  if (paths.empty()) return;
  auto* drag = new QDrag(&source);
  drag->setMimeData(FileListData(paths).release());
  ShowDragged(*drag, paths.front());
  drag->exec(Qt::CopyAction, Qt::CopyAction);
}

// folder becomes true if there is one among what was added, also when the host then refuses a path.
void AddAll(Disc& disc, std::int32_t sector, const std::vector<std::string>& paths, bool& folder) {
  const TrackedSector target(disc, sector);
  for (const auto& path : paths) {
    if (HostFolderExists(path)) folder = true;
    if (AddFile(disc, target, path) != Outcome::kDone) break;
  }
}

std::vector<ListRow> SelectedRows(Panes& panes) {
  std::vector<ListRow> rows;
  const auto& all = panes.List().Model().Rows();
  for (std::size_t i = 0; i < all.size(); ++i) {
    if (panes.List().IsSelected(static_cast<int>(i))) rows.push_back(all[i]);
  }
  return rows;
}

// Every row marked, and none afterwards, however that ends.
class AllRowsSelected {
 public:
  explicit AllRowsSelected(FileList& list) : list_(list) { list_.selectAll(); }
  ~AllRowsSelected() { list_.clearSelection(); }
  AllRowsSelected(const AllRowsSelected&) = delete;
  AllRowsSelected& operator=(const AllRowsSelected&) = delete;

 private:
  FileList& list_;
};

// The drop highlight goes when the drop is over, however it ends.
class HighlightUntilEnd {
 public:
  explicit HighlightUntilEnd(DirTree& tree) : tree_(tree) {}
  ~HighlightUntilEnd() { tree_.SetDropHighlight(nullptr); }
  HighlightUntilEnd(const HighlightUntilEnd&) = delete;
  HighlightUntilEnd& operator=(const HighlightUntilEnd&) = delete;

 private:
  DirTree& tree_;
};

}  // namespace

std::vector<std::string> ExportForListDrag(Panes& panes) {
  return panes.Drags().ExportRows(SelectedRows(panes));
}

std::vector<std::string> ExportForTreeDrag(Panes& panes) {
  const auto node = panes.CurrentNode();
  if (!node) return {};
  if (node->Tag != format::kRootSector) return panes.Drags().ExportDirectory(node->Text, node->Tag);
  const AllRowsSelected all(panes.List());
  return ExportForListDrag(panes);
}

void DragList(Panes& panes) {
  RunDrag(panes.List(), panes.Busily([&] { return ExportForListDrag(panes); }));
}

void DragTree(Panes& panes) {
  RunDrag(panes.Tree(), panes.Busily([&] { return ExportForTreeDrag(panes); }));
}

void DropOnList(Panes& panes, Disc& disc, const QMimeData& data) {
  if (!panes.CurrentNode() || !data.hasUrls()) return;
  bool folder = false;
  const auto follow = [&] {
    if (folder) panes.RebuildTree();
    panes.GetRootTitles();
  };
  try {
    AddAll(disc, panes.CurrentSector(), PathsOf(data), folder);
  } catch (const HostError&) {
    // What came before the path that the host refused is on the disc, and is shown.
    follow();
    throw;
  }
  follow();
}

void DropOnTree(Panes& panes, Disc& disc, const QMimeData& data) {
  const HighlightUntilEnd highlight(panes.Tree());
  if (panes.Tree().DropHighlight() == nullptr || !data.hasUrls()) return;
  bool folder = false;
  const auto follow = [&] {
    // The message of a refusal runs events, in which a rebuild may have taken the node away.
    DirNode* target = panes.Tree().DropHighlight();
    if (target != nullptr) panes.AppendSubdirectories(*target);
    ShowFreeSpace(disc);
  };
  try {
    AddAll(disc, panes.Tree().DropHighlight()->Tag, PathsOf(data), folder);
  } catch (const HostError&) {
    follow();
    throw;
  }
  follow();
}

}  // namespace sectorbox
