#include "shell/commands/DirectoryCommands.h"

#include <QPersistentModelIndex>

#include "disc/catalogue/Adfs.h"
#include "disc/change/Mutation.h"
#include "disc/exchange/HostExchange.h"
#include "shell/commands/StoredName.h"
#include "shell/dialogs/frmTitle.h"
#include "shell/panes/Panes.h"
#include "shell/program/frmMain.h"
#include "toolkit/FileDialogs.h"
#include "toolkit/Text.h"

namespace sectorbox {
namespace {

// The name under which a new directory comes into being, until the user has typed another.
constexpr const char* kNewName = "NewFolder";

}  // namespace

DirectoryCommands::DirectoryCommands(frmMain& window) : window_(window) {
  window.OnCommand("mnuDirectoryNew", [this] { mnuDirectoryNew(); });
  window.OnCommand("mnuDirectoryDelete", [this] { mnuDirectoryDelete(); });
  window.OnCommand("mnuDirectoryRename", [this] { mnuDirectoryRename(); });
  window.OnCommand("mnuDirectoryExport", [this] { mnuDirectoryExport(); });
  window.OnCommand("mnuDirectoryTitle", [this] { mnuDirectoryTitle(); });
  window.ThePanes().Tree().NameEdited = [this](DirNode& node, const QString& text) {
    window_.Guarded([&] { tvwDB_AfterLabelEdit(node, text); });
  };
}

void DirectoryCommands::mnuDirectoryNew() {
  Panes& panes = window_.ThePanes();
  if (panes.CurrentDirNode() == nullptr) return;
  const auto sector = NewDirectory(window_.TheDisc(), panes.CurrentSector(), kNewName);
  if (!sector) return;
  DirNode* node = panes.AddNode(kNewName, *sector);
  panes.GetRootTitles();
  panes.Tree().setFocus();
  panes.Tree().editItem(node, 0);
}

// The node goes whatever the engine decided: after a refusal, F5 on the tree brings it back. The
// events that run during a long delete may make another directory current, which then stays so, or
// rebuild the tree half-way, which then is done once more.
void DirectoryCommands::mnuDirectoryDelete() {
  Panes& panes = window_.ThePanes();
  const DirNode* node = panes.CurrentDirNode();
  if (node == nullptr) return;
  const QPersistentModelIndex held = panes.Tree().indexFromItem(node);
  const bool root = node->Tag == format::kRootSector || node->Parent() == nullptr;
  const std::int32_t parent = root ? -1 : node->Parent()->Tag;
  (void)DeleteTree(window_.TheDisc(), parent, node->Tag, node->Text(),
                   window_.Checked("mnuOptionsDelete"), window_.Checked("mnuOptionsEmpty"));
  const bool stands = held.isValid();
  if (stands) panes.RemoveNode(static_cast<DirNode&>(*panes.Tree().itemFromIndex(held)));
  if (root || !stands) panes.RebuildTree();
  panes.GetRootTitles();
}

void DirectoryCommands::mnuDirectoryRename() {
  Panes& panes = window_.ThePanes();
  DirNode* node = panes.CurrentDirNode();
  if (node == nullptr || node->Tag == format::kRootSector) return;
  panes.Tree().setFocus();
  panes.Tree().editItem(node, 0);
}

void DirectoryCommands::mnuDirectoryExport() {
  const auto node = window_.CurrentNode();
  if (!node) return;
  const std::string folder = AskFolder(&window_, QStringLiteral("Browse For Folder"),
                                       QStringLiteral("Select destination for export"));
  if (!folder.empty()) ExportDisc(window_.TheDisc(), folder, node->Tag);
}

void DirectoryCommands::mnuDirectoryTitle() {
  const auto node = window_.CurrentNode();
  if (!node) return;
  frmTitle dialog(&window_, window_.TheDisc(), node->Tag);
  dialog.exec();
}

void DirectoryCommands::tvwDB_AfterLabelEdit(DirNode& node, const QString& text) {
  Disc& disc = window_.TheDisc();
  if (text.isEmpty() || window_.ThePanes().CurrentDirNode() == nullptr) return;
  if (node.Parent() == nullptr) return;
  const std::string name = TypedToBbc(text);
  if (RenameEntry(disc, name, node.Text(), node.Parent()->Tag,
                  window_.Checked("mnuOptionsDelete")) == Outcome::kDone) {
    node.SetText(StoredName(name));
  }
  ShowFreeSpace(disc);
}

}  // namespace sectorbox
