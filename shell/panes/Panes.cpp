#include "shell/panes/Panes.h"

#include <QApplication>
#include <QHeaderView>
#include <array>

#include "disc/catalogue/Adfs.h"
#include "shell/panes/PaneDrops.h"
#include "shell/program/WindowHost.h"
#include "toolkit/Text.h"

namespace sectorbox {
namespace {

constexpr std::array<double, kColumns> kColumnTwips = {1200, 700, 500, 1000, 1000, 1000, 1000};

// A tree that isn't shown doesn't lay itself out for each node, and tells nobody of its clicks. It
// gets the focus back where it had it, or was to have it once the window is active: at the start
// the window may become so at any time.
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

Panes::Panes(frmMain& window)
    : PaneLayout(&window), window_(window), disc_(window.TheDisc()), drags_(disc_) {
  ConnectTree();
  ConnectList();
  MakeToolBar();
  MakeRootColumns();
}

void Panes::ConnectTree() {
  DirTree& tree = Tree();
  tree.NodeClicked = [this](DirNode& node) { window_.Guarded([&] { tvwDB_NodeClick(node); }); };
  tree.NodeToggled = [this](DirNode& node, bool expanded) {
    window_.Guarded([&] { NodeToggled(node, expanded); });
  };
  tree.MenuWanted = [this](const QPoint& global) {
    if (CurrentNode_ != nullptr) PopUp("mnuDirectory", global);
  };
  tree.KeyPressed = [this](QKeyEvent& event) { return TreeKey(event); };
  tree.DragWanted = [this] {
    window_.Guarded([this] { DragTree(*this); });
    Tree().Select(CurrentNode_);
  };
  tree.Dropped = [this](const QMimeData& dropped) {
    window_.Guarded([&] { DropOnTree(*this, disc_, dropped); });
  };
}

void Panes::ConnectList() {
  FileList& list = List();
  list.RowClicked = [this](int row) {
    if (!filling_) window_.Guarded([&] { lvwDB_ItemClick(row); });
  };
  list.RowDoubleClicked = [this](int row) { window_.Guarded([&] { lvwDB_DblClick(row); }); };
  list.HeadingClicked = [this](int column) { lvwDB_ColumnClick(column); };
  list.MenuWanted = [this](const QPoint& global) {
    if (CurrentItem() != nullptr) PopUp("mnuFile", global);
  };
  list.KeyPressed = [this](QKeyEvent& event) { return ListKey(event); };
  list.DragWanted = [this] { window_.Guarded([this] { DragList(*this); }); };
  list.Dropped = [this](const QMimeData& dropped) {
    window_.Guarded([&] { DropOnList(*this, disc_, dropped); });
  };
}

void Panes::MakeRootColumns() {
  for (int column = 0; column < kColumns; ++column) {
    List().SetColumnWidth(column, kColumnTwips[static_cast<std::size_t>(column)]);
  }
  List().Model().SortBy(kColName, Qt::AscendingOrder);
  List().Header()->setSortIndicator(kColName, Qt::AscendingOrder);
}

void Panes::RebuildTree() {
  TreeReady = false;
  MakeRootColumns();
  window_.RefreshCaption();
  Tree().SetDropHighlight(nullptr);
  CurrentNode_ = nullptr;
  DirNode* root = nullptr;
  try {
    root = FillTree();
  } catch (...) {
    EmptyPanes();
    throw;
  }
  if (root == nullptr) return;
  TreeReady = true;
  tvwDB_NodeClick(*root);
}

// The root; null if events that ran during the walk have rebuilt the tree already, perhaps for
// another disc.
DirNode* Panes::FillTree() {
  const int turn = ++rebuilds_;
  const BusyPointer busy(disc_.Host);
  const HiddenTree hidden(Tree());
  Tree().clear();
  const std::vector<TreeNode> nodes = WalkTree(disc_);
  if (turn != rebuilds_) return nullptr;
  auto* root = new DirNode(nodes.front().Text, nodes.front().Tag);
  AddNodes(*root, nodes);
  Tree().addTopLevelItem(root);
  Tree().expandAll();
  return root;
}

// Rows of the former disc must not be taken for the new one's.
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
  const QPersistentModelIndex held = Tree().indexFromItem(&target);
  FindFiles(disc_, nodes, 0, target.Tag, counts);
  // Below the root events run during the walk, and may have rebuilt the tree.
  if (!held.isValid()) return;
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

// A double click opens directories and nothing else: viewing a file is a choice among many views,
// so it stays a menu command. The row finds its node by name.
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
  static constexpr const char* kFileViews[] = {
      "mnuFileViewText",     "mnuFileViewBasic",    "mnuFileViewDis", "mnuFileViewHex",
      "mnuFileViewWordwise", "mnuFileViewTeletext", "mnuFileViewMode"};
  static constexpr const char* kDirectoryViews[] = {"mnuFileViewCat", "mnuFileViewCatAll",
                                                    "mnuFileViewEx", "mnuFileViewExAll"};
  const ListRow* item = CurrentItem();
  const bool directory = item != nullptr && item->IsDirectory();
  for (const char* name : kFileViews) {
    window_.Action(name)->setEnabled(item != nullptr && !directory);
  }
  for (const char* name : kDirectoryViews) window_.Action(name)->setEnabled(directory);
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
