#include "shell/panes/PaneDrops.h"

#include <QDrag>
#include <algorithm>

#include "disc/catalogue/Adfs.h"
#include "disc/exchange/HostExchange.h"
#include "disc/host/HostError.h"
#include "disc/host/HostFile.h"
#include "shell/icons/Icons.h"
#include "shell/panes/Panes.h"
#include "shell/window/StepTexts.h"
#include "toolkit/FileLists.h"

namespace sectorbox {
namespace {

// During the drag the pointer shows a file or a folder, whichever the first path is.
void ShowDragged(QDrag& drag, const std::string& first) {
  constexpr int kSide = 32;
  const QIcon icon = LoadIcon(HostFolderExists(first) ? "closed" : "leaf");
  drag.setPixmap(icon.pixmap(kSide, kSide));
  drag.setHotSpot({kSide / 4, kSide / 4});
}

// Adds the paths, which are one import and one step. folder becomes true if a folder is among them,
// even if it is refused then.
void AddAll(Panes& panes, Disc& disc, std::int32_t sector, const std::vector<std::string>& paths,
            bool& folder) {
  folder = std::any_of(paths.begin(), paths.end(), HostFolderExists);
  const int count = static_cast<int>(paths.size());
  const History::Step step(panes.Steps(), "Add " + CountOf(count, folder ? "Object" : "File"));
  panes.Steps().Expect(
      std::min(BytesToAdd(paths), FreeSectors(disc) * std::int64_t{format::kSectorSize}));
  // The user has been told of a refusal, and the panes show how far the import has come.
  (void)AddFiles(disc, sector, paths);
}

std::vector<ListRow> SelectedRows(Panes& panes) {
  std::vector<ListRow> rows;
  const auto& all = panes.List().Model().Rows();
  for (std::size_t i = 0; i < all.size(); ++i) {
    if (panes.List().IsSelected(static_cast<int>(i))) rows.push_back(all[i]);
  }
  return rows;
}

// Selects every row while it lives, and no row afterwards.
class AllRowsSelected {
 public:
  explicit AllRowsSelected(FileList& list) : list_(list) { list_.selectAll(); }
  ~AllRowsSelected() { list_.clearSelection(); }
  AllRowsSelected(const AllRowsSelected&) = delete;
  AllRowsSelected& operator=(const AllRowsSelected&) = delete;

 private:
  FileList& list_;
};

// Clears the drop highlight at its own end.
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

void RunDrag(QWidget& source, const std::vector<std::string>& paths) {
  if (paths.empty()) return;
  auto* drag = new QDrag(&source);
  drag->setMimeData(FileListData(paths).release());
  ShowDragged(*drag, paths.front());
  drag->exec(Qt::CopyAction, Qt::CopyAction);
}

void DropOnList(Panes& panes, Disc& disc, const QMimeData& data) {
  if (!panes.CurrentNode() || !data.hasUrls()) return;
  bool folder = false;
  const auto follow = [&] {
    if (folder) panes.RebuildTree();
    panes.GetRootTitles();
  };
  try {
    AddAll(panes, disc, panes.CurrentSector(), PathsOf(data), folder);
  } catch (const HostError&) {
    // The host has refused a path. The paths before it are on the disc already, so the panes show
    // them.
    follow();
    throw;
  }
  follow();
}

void DropOnTree(Panes& panes, Disc& disc, const QMimeData& data) {
  const HighlightUntilEnd highlight(panes.Tree());
  DirNode* target = panes.Tree().DropHighlight();
  if (target == nullptr || !data.hasUrls()) return;
  bool folder = false;
  const auto follow = [&] {
    panes.AppendSubdirectories(*target);
    ShowFreeSpace(disc);
  };
  try {
    AddAll(panes, disc, target->Tag, PathsOf(data), folder);
  } catch (const HostError&) {
    follow();
    throw;
  }
  follow();
}

}  // namespace sectorbox
