#include "shell/panes/Panes.h"

#include <QApplication>
#include <QHeaderView>
#include <QStringList>
#include <array>
#include <utility>

#include "disc/catalogue/Adfs.h"
#include "shell/panes/PaneDrops.h"
#include "shell/window/ViewEntries.h"
#include "toolkit/Text.h"

namespace sectorbox {
namespace {

constexpr std::array<double, kColumns> kColumnTwips = {1200, 700, 500, 1000, 1000, 1000, 1000};

// Hides the tree and blocks its signals: a hidden tree doesn't lay itself out for each node. If the
// tree had the focus of its window, it gets the focus back at the end. This doesn't depend on
// whether the window is active: at the start of the program the window may become active at any
// time.
class HiddenTree {
 public:
  explicit HiddenTree(DirTree& tree) : tree_(tree), focus_(tree.window()->focusWidget() == &tree) {
    tree_.blockSignals(true);
    tree_.hide();
  }
  ~HiddenTree() {
    tree_.show();
    tree_.blockSignals(false);
    if (focus_) tree_.setFocus();
  }
  HiddenTree(const HiddenTree&) = delete;
  HiddenTree& operator=(const HiddenTree&) = delete;

 private:
  DirTree& tree_;
  bool focus_;
};

bool IsOrIsBelow(const DirNode* node, const DirNode& above) {
  while (node != nullptr && node != &above) node = node->Parent();
  return node != nullptr;
}

DirNode* NeighbourOf(DirNode& node) {
  DirNode* parent = node.Parent();
  if (parent == nullptr) return nullptr;
  const int place = parent->indexOfChild(&node);
  if (place + 1 < parent->childCount()) return parent->Child(place + 1);
  return place > 0 ? parent->Child(place - 1) : parent;
}

}  // namespace

Panes::Panes(MainWindow& window, std::string tempFolder)
    : PaneLayout(&window),
      window_(window),
      disc_(window.OpenDisc()),
      drags_(disc_, std::move(tempFolder)) {
  ConnectTree();
  ConnectList();
  MakeToolBar();
  MakeRootColumns();
}

void Panes::ConnectTree() {
  DirTree& tree = Tree();
  connect(&tree, &DirTree::NodeClicked, this, [this](DirNode* node) {
    (void)window_.Start(CommandKind::kSmall, [this, node] { tvwDB_NodeClick(*node); });
  });
  connect(&tree, &DirTree::NodeToggled, this, [this](DirNode* node, bool expanded) {
    (void)window_.Start(CommandKind::kSmall, [=, this] { NodeToggled(*node, expanded); });
  });
  connect(&tree, &DirTree::NameEditWanted, this, [this](DirNode* node) {
    (void)window_.Start(CommandKind::kSmall, [this, node] { Tree().EditName(*node); });
  });
  connect(&tree, &DirTree::MenuWanted, this, [this](const QPoint& global) {
    if (CurrentNode_ != nullptr) PopUp("mnuDirectory", global);
  });
  connect(&tree, &DirTree::DragWanted, this, [this] {
    Drag(Tree(), ExportForTreeDrag);
    Tree().Select(CurrentNode_);
  });
  connect(&tree, &DirTree::Dropped, this, [this](const QMimeData& dropped) {
    (void)window_.Start(CommandKind::kChange, [&] { DropOnTree(*this, disc_, dropped); });
  });
  tree.installEventFilter(this);
  tree.viewport()->installEventFilter(this);
}

void Panes::ConnectList() {
  FileList& list = List();
  connect(&list, &FileList::RowClicked, this, [this](int row) {
    if (!filling_) (void)window_.Start(CommandKind::kSmall, [this, row] { lvwDB_ItemClick(row); });
  });
  connect(&list, &FileList::RowDoubleClicked, this, [this](int row) {
    (void)window_.Start(CommandKind::kSmall, [this, row] { lvwDB_DblClick(row); });
  });
  connect(&list, &FileList::HeadingClicked, this, [this](int column) {
    (void)window_.Start(CommandKind::kSmall, [this, column] { lvwDB_ColumnClick(column); });
  });
  connect(&list, &FileList::NameEditWanted, this, [this](int row) {
    (void)window_.Start(CommandKind::kSmall, [this, row] { List().EditName(row); });
  });
  connect(&list, &FileList::MenuWanted, this, [this](const QPoint& global) {
    if (CurrentItem() != nullptr) PopUp("mnuFile", global);
  });
  connect(&list, &FileList::DragWanted, this, [this] { Drag(List(), ExportForListDrag); });
  connect(&list, &FileList::Dropped, this, [this](const QMimeData& dropped) {
    (void)window_.Start(CommandKind::kChange, [&] { DropOnList(*this, disc_, dropped); });
  });
  list.installEventFilter(this);
  list.viewport()->installEventFilter(this);
}

// The guard doesn't count the drag as a running command, because a drop on a pane of this window
// comes while the drag runs, and it has to start.
void Panes::Drag(QWidget& source, std::vector<std::string> (*exportFiles)(Panes& panes)) {
  std::vector<std::string> paths;
  (void)window_.Start(CommandKind::kChange, [&] {
    const BusyPointer busy(disc_.Host);
    paths = exportFiles(*this);
  });
  RunDrag(source, paths);
}

void Panes::MakeRootColumns() {
  for (int column = 0; column < kColumns; ++column) {
    List().SetColumnWidth(column, kColumnTwips[static_cast<std::size_t>(column)]);
  }
  List().Model().SortBy(kColName, Qt::AscendingOrder);
  List().Header()->setSortIndicator(kColName, Qt::AscendingOrder);
}

void Panes::RebuildTree() {
  const CommandGuard::Running rebuild(window_.Guard(), CommandKind::kSmall);
  TreeReady = false;
  MakeRootColumns();
  window_.RefreshCaption();
  Tree().SetDropHighlight(nullptr);
  CurrentNode_ = nullptr;
  DirNode* root = nullptr;
  try {
    root = &FillTree();
  } catch (...) {
    EmptyPanes();
    throw;
  }
  TreeReady = true;
  tvwDB_NodeClick(*root);
}

bool Panes::ShowDiscAgain() {
  const std::int32_t sector = CurrentSector();
  QStringList path;
  for (const DirNode* node = CurrentNode_; node != nullptr && node->Parent() != nullptr;
       node = node->Parent()) {
    path.prepend(node->text(0));
  }
  RebuildTree();
  // The path comes first, because another directory may lie at the sector now. A directory that has
  // another name now is found by its sector.
  DirNode* found = NodeOfPath(path);
  if (found == nullptr) found = NodeAt(sector);
  if (found == nullptr) return false;
  if (found != CurrentNode_) tvwDB_NodeClick(*found);
  return true;
}

DirNode* Panes::NodeOfPath(const QStringList& path) {
  DirNode* found = CurrentNode_;
  for (const QString& name : path) {
    DirNode* parent = std::exchange(found, nullptr);
    for (int i = 0; i < parent->childCount() && found == nullptr; ++i) {
      if (parent->Child(i)->text(0) == name) found = parent->Child(i);
    }
    if (found == nullptr) return nullptr;
  }
  return found;
}

DirNode* Panes::NodeAt(std::int32_t sector) {
  for (QTreeWidgetItemIterator i(&Tree()); *i != nullptr; ++i) {
    auto* node = static_cast<DirNode*>(*i);
    if (node->Tag == sector) return node;
  }
  return nullptr;
}

// Reads the disc into the tree and gives the root.
DirNode& Panes::FillTree() {
  const BusyPointer busy(disc_.Host);
  const HiddenTree hidden(Tree());
  Tree().clear();
  const std::vector<TreeNode> nodes = WalkTree(disc_);
  auto* root = new DirNode(nodes.front().Text, nodes.front().Tag);
  AddNodes(*root, nodes);
  Tree().addTopLevelItem(root);
  Tree().expandAll();
  return *root;
}

// Clears the list, so that no command takes a row of the former disc for a row of the new one.
void Panes::EmptyPanes() {
  CurrentItem_ = QPersistentModelIndex();
  List().Model().SetRows({});
  TreeReady = true;
}

// nodes[0] is root itself. Parents come before their children.
void Panes::AddNodes(DirNode& root, const std::vector<TreeNode>& nodes) {
  std::vector<DirNode*> made(nodes.size(), nullptr);
  made[0] = &root;
  for (std::size_t i = 1; i < nodes.size(); ++i) {
    DirNode* parent = made[static_cast<std::size_t>(nodes[i].Parent)];
    made[i] = new DirNode(nodes[i].Text, nodes[i].Tag);
    parent->addChild(made[i]);
    parent->SetOpen(true);
  }
  for (DirNode* node : made) {
    if (node->childCount() > 1) node->SortChildren();
  }
}

void Panes::AppendSubdirectories(DirNode& target) {
  std::vector<TreeNode> nodes(1);
  WalkCounts counts;
  FindFiles(disc_, nodes, 0, target.Tag, counts);
  Tree().blockSignals(true);
  AddNodes(target, nodes);
  target.setExpanded(true);
  Tree().blockSignals(false);
}

void Panes::GetRootTitles() {
  {
    const BusyPointer busy(disc_.Host);
    CurrentItem_ = QPersistentModelIndex();
    filling_ = true;
    List().Model().SetRows({});
    filling_ = false;
    std::vector<ListRow> rows = ReadRows(disc_, CurrentSector());
    filling_ = true;
    List().Model().SetRows(std::move(rows));
    List().FitColumns();
    filling_ = false;
    ShowFreeSpace(disc_);
  }
  if (List().Model().rowCount() == 0) return;
  CurrentItem_ = List().Model().index(0, kColName);
  UpdateFileMenu();
}

void Panes::FollowMoves(const std::map<std::int32_t, std::int32_t>& moves) {
  for (QTreeWidgetItemIterator i(&Tree()); *i != nullptr; ++i) {
    auto* node = static_cast<DirNode*>(*i);
    const auto move = moves.find(node->Tag);
    if (move != moves.end()) node->Tag = move->second;
  }
  FileListModel& model = List().Model();
  for (int row = 0; row < model.rowCount(); ++row) {
    const ListRow& entry = model.Rows()[static_cast<std::size_t>(row)];
    if (!entry.IsDirectory()) continue;
    const auto move = moves.find(entry.StartSector());
    if (move == moves.end()) continue;
    Entry moved = entry.Item;
    moved.SetStart(move->second);
    model.SetRow(row, MakeRow(moved));
  }
}

DirNode* Panes::AddNode(const std::string& name, std::int32_t sector) {
  auto* node = new DirNode(name, sector);
  CurrentNode_->addChild(node);
  CurrentNode_->SetOpen(true);
  Tree().blockSignals(true);
  CurrentNode_->setExpanded(true);
  Tree().blockSignals(false);
  CurrentNode_ = node;
  Tree().Select(node);
  return node;
}

void Panes::RemoveNode(DirNode& node) {
  CurrentNode_ = nullptr;
  Tree().SetDropHighlight(nullptr);
  DirNode* next = Tree().Selected();
  if (IsOrIsBelow(next, node)) next = NeighbourOf(node);
  Tree().blockSignals(true);
  delete &node;
  Tree().blockSignals(false);
  Tree().Select(next);
  CurrentNode_ = Tree().Selected();
}

std::optional<CurrentDirectory> Panes::CurrentNode() const {
  if (CurrentNode_ == nullptr) return std::nullopt;
  return CurrentDirectory{CurrentNode_->Tag, CurrentNode_->Text()};
}

std::int32_t Panes::CurrentSector() const {
  return CurrentNode_ == nullptr ? format::kRootSector : CurrentNode_->Tag;
}

const ListRow* Panes::CurrentItem() const {
  if (!CurrentItem_.isValid()) return nullptr;
  const auto& rows = static_cast<const FileListModel*>(CurrentItem_.model())->Rows();
  return &rows[static_cast<std::size_t>(CurrentItem_.row())];
}

std::string Panes::CurrentDirPath() {
  std::string path;
  for (const DirNode* node = CurrentNode_; node != nullptr; node = node->Parent()) {
    const std::string name = GetDirName(disc_, node->Tag);
    path = path.empty() ? name : name + "." + path;
  }
  return path;
}

void Panes::tvwDB_NodeClick(DirNode& node) {
  CurrentNode_ = &node;
  Tree().Select(&node);
  if (!TreeReady) {
    node.SortChildren();
    return;
  }
  GetRootTitles();
  Tree().blockSignals(true);
  node.SortChildren();
  Tree().blockSignals(false);
  Tree().viewport()->update();
  ShowFreeSpace(disc_);
}

void Panes::NodeToggled(DirNode& node, bool expanded) {
  node.SetOpen(expanded);
  tvwDB_NodeClick(node);
}

void Panes::lvwDB_ItemClick(int row) {
  CurrentItem_ = List().Model().index(row, kColName);
  UpdateFileMenu();
  ShowRowPath(row);
}

void Panes::ShowRowPath(int row) {
  const ListRow& item = List().Model().Rows()[static_cast<std::size_t>(row)];
  window_.SetPanel2(FromBbc(CurrentDirPath() + "." + item.Name()));
}

// A double click opens a directory. It doesn't open a file, because a file has many views, and the
// user chooses one in the menu. This finds the row's node by its name.
void Panes::lvwDB_DblClick(int row) {
  lvwDB_ItemClick(row);
  if (CurrentNode_ == nullptr) return;
  const QString name = FromBbc(CurrentItem()->Name());
  for (int i = 0; i < CurrentNode_->childCount(); ++i) {
    DirNode* child = CurrentNode_->Child(i);
    if (child->text(0) != name) continue;
    Tree().blockSignals(true);
    child->setExpanded(true);
    Tree().blockSignals(false);
    tvwDB_NodeClick(*child);
    return;
  }
}

void Panes::lvwDB_ColumnClick(int column) {
  listTag_ = listTag_ == QLatin1String(" 0") ? QStringLiteral(" 1") : QStringLiteral(" 0");
  const auto order = listTag_ == QLatin1String(" 0") ? Qt::AscendingOrder : Qt::DescendingOrder;
  List().Model().SortBy(column, order);
  List().Header()->setSortIndicator(column, order);
}

void Panes::UpdateFileMenu() {
  const ListRow* item = CurrentItem();
  const bool directory = item != nullptr && item->IsDirectory();
  const bool file = item != nullptr && !directory;
  for (const TextViewKind& kind : TextViews()) {
    QAction* entry = FindViewEntry(window_, FileEntryOf(kind));
    if (entry == nullptr) continue;
    // A view of any entry can show a directory too, but the menu offers it for files only.
    entry->setEnabled(kind.Subject == ViewSubject::kDirectory ? directory : file);
  }
  for (const char* name : {"mnuFileViewTeletext", "mnuFileViewMode"}) {
    window_.Action(name)->setEnabled(file);
  }
}

void Panes::SelectRows(const std::function<bool(const ListRow& row)>& wanted) {
  const auto& rows = List().Model().Rows();
  std::vector<int> found;
  for (std::size_t row = 0; row < rows.size(); ++row) {
    if (wanted(rows[row])) found.push_back(static_cast<int>(row));
  }
  if (found.empty()) return;
  List().clearSelection();
  for (const int row : found) List().SetSelected(row, true);
  CurrentItem_ = List().Model().index(found.front(), kColName);
  List().selectionModel()->setCurrentIndex(CurrentItem_, QItemSelectionModel::NoUpdate);
  List().scrollTo(CurrentItem_);
  UpdateFileMenu();
}

void Panes::SelectAll() {
  List().selectAll();
  if (List().Model().rowCount() > 0) {
    CurrentItem_ = List().Model().index(0, kColName);
    UpdateFileMenu();
  }
  List().setFocus();
  List().viewport()->update();
}

}  // namespace sectorbox
