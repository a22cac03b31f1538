#include "shell/commands/DirectoryCommands.h"

#include "disc/catalogue/Adfs.h"
#include "disc/change/Mutation.h"
#include "disc/exchange/HostExchange.h"
#include "shell/commands/StoredName.h"
#include "shell/dialogs/frmTitle.h"
#include "shell/panes/Panes.h"
#include "shell/window/MainWindow.h"
#include "shell/window/StepTexts.h"
#include "toolkit/FileDialogs.h"
#include "toolkit/Text.h"

namespace sectorbox {
namespace {

// A new directory has this name until the user has typed another.
constexpr const char* kNewName = "NewFolder";

}  // namespace

DirectoryCommands::DirectoryCommands(MainWindow& window, Panes& panes)
    : window_(window), panes_(panes) {
  window.OnCommand("mnuDirectoryNew", [this] { mnuDirectoryNew(); });
  window.OnCommand("mnuDirectoryDelete", [this] { mnuDirectoryDelete(); });
  window.OnCommand("mnuDirectoryRename", [this] { mnuDirectoryRename(); });
  window.OnCommand("mnuDirectoryExport", [this] { mnuDirectoryExport(); });
  window.OnCommand("mnuDirectoryTitle", [this] { mnuDirectoryTitle(); });
  connect(&panes.Tree(), &DirTree::NameEdited, this, [this](DirNode* node, const QString& text) {
    (void)window_.Start(CommandKind::kChange, [&] { tvwDB_AfterLabelEdit(*node, text); });
  });
}

void DirectoryCommands::mnuDirectoryNew() {
  if (panes_.CurrentDirNode() == nullptr) return;
  const auto sector = [this] {
    const History::Step step(window_.Steps(), std::string("New Directory ") + kNewName);
    return NewDirectory(window_.OpenDisc(), panes_.CurrentSector(), kNewName);
  }();
  if (!sector) return;
  newStep_ = window_.Steps().LastStep();
  newSector_ = *sector;
  DirNode* node = panes_.AddNode(kNewName, *sector);
  panes_.GetRootTitles();
  panes_.Tree().setFocus();
  panes_.Tree().EditName(*node);
}

// The node is removed even if the engine has refused. The user then brings it back with F5 on the
// tree. After an attempt to delete the root the whole tree is read again.
void DirectoryCommands::mnuDirectoryDelete() {
  DirNode* node = panes_.CurrentDirNode();
  if (node == nullptr) return;
  const bool root = node->Tag == format::kRootSector || node->Parent() == nullptr;
  const std::int32_t parent = root ? -1 : node->Parent()->Tag;
  Disc& disc = window_.OpenDisc();
  const std::string name = node->Text();
  const History::Step step(window_.Steps(), "Delete " + name);
  const Outcome outcome =
      DeleteTree(disc, parent, node->Tag, name, window_.Checked("mnuOptionsDelete"),
                 window_.Checked("mnuOptionsEmpty"));
  panes_.RemoveNode(*node);
  if (root) panes_.RebuildTree();
  panes_.GetRootTitles();
  if (outcome == Outcome::kDone) TellDeleted(window_, root ? "Everything in " + name : name);
}

void DirectoryCommands::mnuDirectoryRename() {
  DirNode* node = panes_.CurrentDirNode();
  if (node == nullptr || node->Tag == format::kRootSector) return;
  if (panes_.Tree().IsEditing()) return;
  panes_.Tree().setFocus();
  panes_.Tree().EditName(*node);
}

void DirectoryCommands::mnuDirectoryExport() {
  const auto node = window_.CurrentNode();
  if (!node) return;
  const std::string folder = AskFolder(&window_, QStringLiteral("Browse For Folder"),
                                       QStringLiteral("Select destination for export"));
  if (!folder.empty()) ExportDisc(window_.OpenDisc(), folder, node->Tag);
}

void DirectoryCommands::mnuDirectoryTitle() {
  const auto node = window_.CurrentNode();
  if (!node) return;
  Disc& disc = window_.OpenDisc();
  frmTitle dialog(&window_, GetDirTitle(disc, node->Tag));
  if (dialog.exec() != QDialog::Accepted) return;
  const History::Step step(window_.Steps(), "Set Title");
  (void)SetDirTitle(disc, node->Tag, dialog.Title());
}

void DirectoryCommands::tvwDB_AfterLabelEdit(DirNode& node, const QString& text) {
  Disc& disc = window_.OpenDisc();
  if (text.isEmpty() || panes_.CurrentDirNode() == nullptr) return;
  if (node.Parent() == nullptr) return;
  const std::string name = TypedToBbc(text);
  // The name that is typed for a new directory belongs to its making.
  const bool isNew =
      newStep_ != 0 && node.Tag == newSector_ && window_.Steps().LastStep() == newStep_;
  const History::Step step(
      window_.Steps(), isNew ? "New Directory " + name : "Rename " + node.Text(),
      History::Mark::kSets, isNew ? History::Place::kWithTheLast : History::Place::kNew);
  if (RenameEntry(disc, name, node.Text(), node.Parent()->Tag, window_.Checked("mnuOptionsDelete"),
                  node.Tag) == Outcome::kDone) {
    node.SetText(StoredName(name));
  }
  ShowFreeSpace(disc);
}

}  // namespace sectorbox
