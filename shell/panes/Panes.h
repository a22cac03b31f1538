#pragma once

#include <map>
#include <optional>
#include <vector>

#include "disc/ask/BusyPointer.h"
#include "disc/catalogue/Catalogue.h"
#include "shell/panes/DragOut.h"
#include "shell/panes/PaneLayout.h"
#include "shell/program/frmMain.h"

namespace sectorbox {

// The two panes at work: what a click or a key does, what is current, and how they follow the disc.
// There is no catalogue in memory beside them: a command finds its target through the current node
// and the current row and goes back to the disc by sector and by name.
class Panes : public PaneLayout {
  Q_OBJECT

 public:
  explicit Panes(frmMain& window);

  // --- Following the disc ----------------------------------------------------------------------
  // Sets the seven headings and their widths, and sorts by name again.
  void MakeRootColumns();
  // Fills tree and list anew; the root is current afterwards. A disc that can't be read (HostError)
  // leaves both empty.
  void RebuildTree();
  // Fills the list from the current directory and makes its first row current. A directory that
  // can't be read (HostError) leaves the list empty.
  void GetRootTitles();
  // The directories that a compaction moved: nodes and rows take the new sectors.
  void FollowMoves(const std::map<std::int32_t, std::int32_t>& moves);
  void SetTreeReady() { TreeReady = true; }
  // Adds the node of a directory that has just come into being below the current one, and makes it
  // current.
  DirNode* AddNode(const std::string& name, std::int32_t sector);
  // Adds a node below the target for each subdirectory that it has, without a look at those that
  // are already there.
  void AppendSubdirectories(DirNode& target);

  // --- What is current -------------------------------------------------------------------------
  DirNode* CurrentDirNode() const { return CurrentNode_; }
  std::optional<CurrentDirectory> CurrentNode() const;
  // The current directory's start sector; the root's when there is no current node.
  std::int32_t CurrentSector() const;
  const ListRow* CurrentItem() const;
  int CurrentRow() const { return CurrentItem_.isValid() ? CurrentItem_.row() : -1; }
  // Dotted path of the current directory, from the names on the disc, such as "$.GAMES.ARCADE".
  std::string CurrentDirPath();

  // Makes a node current; while a rebuild is running it is only sorted.
  void tvwDB_NodeClick(DirNode& node);
  void lvwDB_ItemClick(int row);
  void lvwDB_DblClick(int row);
  void lvwDB_ColumnClick(int column);
  // The view entries of the File menu, by what the current row is.
  void UpdateFileMenu();
  // Panel 2: the path of the current row.
  void ShowRowPath(int row);
  // Takes a node out of the tree; the tree's selected node becomes current. Where that was the node
  // itself or one below it, it is the next one beside it, else the one before, else its parent.
  void RemoveNode(DirNode& node);
  void SelectAll();

  // --- Drag and drop ---------------------------------------------------------------------------
  // Does the work with the busy pointer showing.
  template <typename Work>
  auto Busily(const Work& work) {
    const BusyPointer busy(disc_.Host);
    return work();
  }
  void ResetDragFolders() { drags_.DragFolderCount = 0; }
  DragOut& Drags() { return drags_; }

 private:
  void ConnectTree();
  void ConnectList();
  void MakeToolBar();
  DirNode* FillTree();
  void EmptyPanes();
  void NodeToggled(DirNode& node, bool expanded);
  bool TreeKey(QKeyEvent& event);
  bool ListKey(QKeyEvent& event);
  void AddNodes(DirNode& root, const std::vector<TreeNode>& nodes);
  void PopUp(const char* menu, const QPoint& global);

  frmMain& window_;
  Disc& disc_;
  DragOut drags_;
  DirNode* CurrentNode_ = nullptr;
  QPersistentModelIndex CurrentItem_;
  bool TreeReady = false;
  bool filling_ = false;
  int rebuilds_ = 0;
  // The list's own Tag: " 0" or " 1" once a heading was clicked. It remembers the last order for
  // all columns together, so that the order flips at every click, whichever heading it was on.
  QString listTag_;
};

}  // namespace sectorbox
