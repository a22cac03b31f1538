#include "shell/commands/FileCommands.h"

#include "disc/ask/BusyPointer.h"
#include "disc/catalogue/Adfs.h"
#include "disc/change/Addresses.h"
#include "disc/change/Mutation.h"
#include "disc/exchange/HostExchange.h"
#include "disc/host/HostPath.h"
#include "disc/store/TrackedSector.h"
#include "shell/dialogs/frmAddr.h"
#include "shell/dialogs/frmAttr.h"
#include "shell/panes/Panes.h"
#include "shell/panes/RowExport.h"
#include "shell/program/frmMain.h"
#include "toolkit/FileDialogs.h"
#include "toolkit/Text.h"

namespace sectorbox {

FileCommands::FileCommands(frmMain& window) : window_(window) {
  window.OnCommand("mnuFileSelectAll", [this] { window_.ThePanes().SelectAll(); });
  window.OnCommand("mnuFileAttributes", [this] { mnuFileAttributes(); });
  window.OnCommand("mnuFileAddresses", [this] { mnuFileAddresses(); });
  window.OnCommand("mnuFileDelete", [this] { mnuFileDelete(); });
  window.OnCommand("mnuFileRename", [this] { mnuFileRename(); });
  window.OnCommand("mnuFileExport", [this] { mnuFileExport(); });
  window.ThePanes().List().NameEdited = [this](int row, const QString& text) {
    window_.Guarded([&] { lvwDB_AfterLabelEdit(row, text); });
  };
}

FileCommands::~FileCommands() = default;

// The dialog opens with the state of one row and its result goes to every selected row, whatever
// they held before.
void FileCommands::mnuFileAttributes() {
  const ListRow* item = window_.CurrentItem();
  if (item == nullptr) return;
  if (attr_ == nullptr) attr_ = new frmAttr(&window_);
  const auto has = [&](char letter) { return item->Attr().find(letter) != std::string::npos; };
  attr_->AttrRead = has('R');
  attr_->AttrWrite = has('W');
  attr_->AttrLocked = has('L');
  attr_->exec();
  if (attr_->DialogAccepted) {
    FileList& list = window_.ThePanes().List();
    for (int row = 0; row < list.Model().rowCount(); ++row) {
      if (list.IsSelected(row) && !ApplyAttributes(row)) return;
    }
  }
  ShowFreeSpace(window_.TheDisc());
}

// False if the row has no entry any more.
bool FileCommands::ApplyAttributes(int row) {
  Disc& disc = window_.TheDisc();
  Panes& panes = window_.ThePanes();
  FileListModel& model = panes.List().Model();
  const std::int32_t sector = panes.CurrentSector();
  const std::string name = model.Rows()[static_cast<std::size_t>(row)].Name();
  SetEntryAttributes(disc, sector, name, attr_->AttrRead, attr_->AttrWrite, attr_->AttrLocked);
  const std::int32_t slot = FindEntry(disc, sector, name);
  if (slot == -1) return false;
  model.SetRow(row, ReadRow(disc, sector, slot));
  return true;
}

void FileCommands::mnuFileAddresses() {
  const ListRow* item = window_.CurrentItem();
  if (item == nullptr || item->IsDirectory()) return;
  if (addr_ == nullptr) addr_ = new frmAddr(&window_);
  addr_->LoadText = item->Columns[kColLoad];
  addr_->ExecText = item->Columns[kColExec];
  const int row = window_.ThePanes().CurrentRow();
  addr_->exec();
  if (addr_->DialogAccepted) ApplyAddresses(row);
}

void FileCommands::ApplyAddresses(int row) {
  Disc& disc = window_.TheDisc();
  Panes& panes = window_.ThePanes();
  FileListModel& model = panes.List().Model();
  const std::int32_t sector = panes.CurrentSector();
  const std::string name = model.Rows()[static_cast<std::size_t>(row)].Name();
  // A dialog that was closed by its close box after a refused OK counts as accepted; its texts may
  // be no addresses then, and nothing is written.
  if (!CheckAddresses(addr_->LoadText, addr_->ExecText).empty()) return;
  SetEntryAddresses(disc, sector, name, addr_->LoadText, addr_->ExecText);
  const std::int32_t slot = FindEntry(disc, sector, name);
  if (slot == -1) return;
  model.SetRow(row, ReadRow(disc, sector, slot));
  ShowFreeSpace(disc);
}

// A release may compact the disc; the directory and the rows follow it, so each step reads its
// sectors anew. The rows don't shift meanwhile, since the list is only filled again at the end. The
// events that run between rows may bring another directory on the screen, or another disc: then the
// loop ends.
void FileCommands::mnuFileDelete() {
  Panes& panes = window_.ThePanes();
  Disc& disc = window_.TheDisc();
  if (panes.CurrentItem() == nullptr) return;
  const TrackedSector directory(disc, panes.CurrentSector());
  const FileListModel& model = panes.List().Model();
  const int count = model.rowCount();
  const std::string opened = disc.TheDisc.FileName();
  bool directoryWent = false;
  for (int row = 0; row < count; ++row) {
    if (disc.TheDisc.FileName() != opened) break;
    if (panes.CurrentSector() != directory || row >= model.rowCount()) break;
    if (!panes.List().IsSelected(row)) continue;
    const ListRow entry = model.Rows()[static_cast<std::size_t>(row)];
    const bool ignoreLock = window_.Checked("mnuOptionsDelete");
    if (!entry.IsDirectory()) {
      if (DeleteEntry(disc, directory, entry.Name(), false, ignoreLock) != Outcome::kDone) break;
      disc.Host.PumpEvents();
    } else {
      if (DeleteTree(disc, directory, entry.StartSector(), entry.Name(), ignoreLock,
                     window_.Checked("mnuOptionsEmpty")) != Outcome::kDone) {
        break;
      }
      directoryWent = true;
    }
  }
  if (directoryWent) panes.RebuildTree();
  panes.GetRootTitles();
}

void FileCommands::mnuFileRename() {
  Panes& panes = window_.ThePanes();
  if (panes.CurrentItem() == nullptr) return;
  panes.List().setFocus();
  panes.List().EditName(panes.CurrentRow());
}

void FileCommands::mnuFileExport() {
  const FileList& list = window_.ThePanes().List();
  if (!list.selectionModel()->hasSelection()) return;
  const std::string folder = AskFolder(&window_, QStringLiteral("Browse For Folder"),
                                       QStringLiteral("Select destination for file"));
  if (folder.empty()) return;
  const BusyPointer busy(window_.TheDisc().Host);
  const auto& rows = window_.ThePanes().List().Model().Rows();
  HostNamesOfFolder names;
  for (std::size_t row = 0; row < rows.size(); ++row) {
    if (!list.IsSelected(static_cast<int>(row))) continue;
    ExportRow(window_.TheDisc(), rows[row], JoinHostPath(folder, names.Take(rows[row].Name())));
  }
}

// The tree isn't told: a directory that was renamed here keeps its old text there until a rebuild.
void FileCommands::lvwDB_AfterLabelEdit(int row, const QString& text) {
  Panes& panes = window_.ThePanes();
  if (text.isEmpty() || panes.CurrentItem() == nullptr) return;
  FileListModel& model = panes.List().Model();
  const std::string former = model.Rows()[static_cast<std::size_t>(row)].Name();
  const std::string name = TypedToBbc(text);
  if (RenameEntry(window_.TheDisc(), name, former, panes.CurrentSector(),
                  window_.Checked("mnuOptionsDelete")) == Outcome::kDone) {
    // The row keeps its old sequence number until the list is filled again.
    Entry renamed = model.Rows()[static_cast<std::size_t>(row)].Item;
    renamed.Rename(name);
    model.SetRow(row, MakeRow(renamed));
  }
  panes.ShowRowPath(row);
}

}  // namespace sectorbox
