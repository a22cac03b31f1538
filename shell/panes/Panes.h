#pragma once

#include <QActionGroup>
#include <functional>
#include <map>
#include <optional>
#include <vector>

#include "disc/ask/BusyPointer.h"
#include "disc/catalogue/Catalogue.h"
#include "shell/panes/DragOut.h"
#include "shell/panes/PaneLayout.h"
#include "shell/window/MainWindow.h"

namespace sectorbox {

// The two panes: what a click or a key does, what is current, and how the panes follow the disc.
// There is no catalogue in memory. A command finds its target through the current node and the
// current row, and then reads the disc again by sector and by name.
class Panes : public PaneLayout {
  Q_OBJECT

 public:
  // Drags put what they take below tempFolder, which ends with a separator.
  Panes(MainWindow& window, std::string tempFolder);

  // --- Following the disc ----------------------------------------------------------------------
  // Sets the widths of the seven columns, except those that the user has dragged, and sorts by name
  // again.
  void MakeRootColumns();
  // Fills tree and list anew. The root is current afterwards. Events run meanwhile, but the guard
  // lets no command start in them. If the disc can't be read (HostError), both panes are empty
  // afterwards.
  void RebuildTree();
  // Shows again what is on the disc, after a command that has failed in its middle: RebuildTree,
  // and the directory that was current is current again, if there still is one of its path or at
  // its sector. False if there is none. HostError as RebuildTree.
  bool ShowDiscAgain();
  // Fills the list from the current directory and makes its first row current. If the directory
  // can't be read (HostError), the list is empty afterwards.
  void GetRootTitles();
  // A compaction has moved directories: nodes and rows take the new sectors.
  void FollowMoves(const std::map<std::int32_t, std::int32_t>& moves);
  void SetTreeReady() { TreeReady = true; }
  // Adds a node for a new directory in the current one, and makes that node current.
  DirNode* AddNode(const std::string& name, std::int32_t sector);
  // Adds a node below the target for each subdirectory that it has, whether or not the tree shows
  // that subdirectory already.
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

  // Makes a node current. While a rebuild is running it only sorts the node's children.
  void tvwDB_NodeClick(DirNode& node);
  void lvwDB_ItemClick(int row);
  void lvwDB_DblClick(int row);
  void lvwDB_ColumnClick(int column);
  // Enables the view entries of the File menu that fit the current row.
  void UpdateFileMenu();
  // Panel 2: the path of the current row.
  void ShowRowPath(int row);
  // Takes a node out of the tree. The tree's selected node becomes current. If the selected node is
  // taken out too, the next node beside it is selected, else the one before, else its parent.
  void RemoveNode(DirNode& node);
  void SelectAll();
  // Selects those rows that are wanted, and no other. The first of them becomes current; if there
  // is none, nothing changes.
  void SelectRows(const std::function<bool(const ListRow& row)>& wanted);

  // The steps that have changed the disc.
  History& Steps() { return window_.Steps(); }

  // --- Drag and drop ---------------------------------------------------------------------------
  void ResetDragFolders() { drags_.DragFolderCount = 0; }
  DragOut& Drags() { return drags_; }

 protected:
  // The keys of both panes. While the guard lets no small step start, the panes take no input at
  // all, because a click would change the selection that a command is working on. While the guard
  // lets no change start, the panes take no drops.
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void ConnectTree();
  void ConnectList();
  void MakeToolBar();
  template <typename Run>
  QAction* AddTool(const char* key, const char* icon, Run run);
  void AddEntryTool(const char* key, const char* icon, const char* entry);
  void AddLookTool(const char* key, const char* icon, ListLook look);
  DirNode& FillTree();
  // The node with that path below the current node, which is the root; null if there is none.
  DirNode* NodeOfPath(const QStringList& path);
  DirNode* NodeAt(std::int32_t sector);  // null if there is none
  void EmptyPanes();
  void NodeToggled(DirNode& node, bool expanded);
  void GoUp();
  // Exports with exportFiles, and then runs a drag of the paths that it gives, until the user
  // releases the button.
  void Drag(QWidget& source, std::vector<std::string> (*exportFiles)(Panes& panes));
  bool SwallowInput(QEvent& event);
  // Each is true if the pane took the key.
  bool TreeKey(const QKeyEvent& event);
  bool ListKey(const QKeyEvent& event);
  bool CommonKey(const QKeyEvent& event);
  bool RunEntry(const char* entry);  // if it is enabled; true in every case
  bool PopUpMenuOfPane();            // of the pane that has the focus
  void AddNodes(DirNode& root, const std::vector<TreeNode>& nodes);
  void PopUp(const char* menu, const QPoint& global);

  MainWindow& window_;
  Disc& disc_;
  DragOut drags_;
  DirNode* CurrentNode_ = nullptr;
  QPersistentModelIndex CurrentItem_;
  bool TreeReady = false;
  bool filling_ = false;
  QActionGroup looks_{this};     // the button of the view mode that is on is pressed in
  bool pressSwallowed_ = false;  // the release of that button is to be swallowed, too
  // The list's own Tag: " 0" or " 1" once a heading was clicked. There is one for all columns, so
  // the order flips at every click, also when the click is on another heading than the last one.
  QString listTag_;
};

}  // namespace sectorbox
