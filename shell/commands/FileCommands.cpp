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
#include "shell/window/MainWindow.h"
#include "shell/window/StepTexts.h"
#include "toolkit/FileDialogs.h"
#include "toolkit/Text.h"

namespace sectorbox {

FileCommands::FileCommands(MainWindow& window, Panes& panes) : window_(window), panes_(panes) {
  window.OnCommand("mnuFileSelectAll", [this] { panes_.SelectAll(); });
  window.OnCommand("mnuFileAttributes", [this] { mnuFileAttributes(); });
  window.OnCommand("mnuFileAddresses", [this] { mnuFileAddresses(); });
  window.OnCommand("mnuFileDelete", [this] { mnuFileDelete(); });
  window.OnCommand("mnuFileRename", [this] { mnuFileRename(); });
  window.OnCommand("mnuFileExport", [this] { mnuFileExport(); });
  connect(&panes_.List(), &FileList::NameEdited, this, [this](int row, const QString& text) {
    (void)window_.Start(CommandKind::kChange, [&] { lvwDB_AfterLabelEdit(row, text); });
  });
}

// The dialog opens with the state of one row. Its result goes to every selected row and replaces
// what the row had.
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
    const History::Step step(window_.Steps(), "Set Attributes");
    FileList& list = panes_.List();
    for (int row = 0; row < list.Model().rowCount(); ++row) {
      if (list.IsSelected(row) && ApplyAttributes(row) == Applied::kNoEntry) return;
    }
  }
  ShowFreeSpace(window_.OpenDisc());
}

FileCommands::Applied FileCommands::ApplyAttributes(int row) {
  Disc& disc = window_.OpenDisc();
  FileListModel& model = panes_.List().Model();
  const std::int32_t sector = panes_.CurrentSector();
  const ListRow entry = model.Rows()[static_cast<std::size_t>(row)];
  const Outcome outcome =
      SetEntryAttributes(disc, sector, entry.Name(), attr_->AttrRead, attr_->AttrWrite,
                         attr_->AttrLocked, entry.StartSector());
  // What was refused once is refused for every row.
  if (outcome != Outcome::kDone) return Applied::kNoEntry;
  const std::int32_t slot = FindEntry(disc, sector, entry.Name(), entry.StartSector());
  if (slot == -1) return Applied::kNoEntry;
  model.SetRow(row, ReadRow(disc, sector, slot));
  return Applied::kDone;
}

void FileCommands::mnuFileAddresses() {
  const ListRow* item = window_.CurrentItem();
  if (item == nullptr || item->IsDirectory()) return;
  if (addr_ == nullptr) addr_ = new frmAddr(&window_);
  addr_->LoadText = item->Columns[kColLoad];
  addr_->ExecText = item->Columns[kColExec];
  const int row = panes_.CurrentRow();
  addr_->exec();
  if (addr_->DialogAccepted) ApplyAddresses(row);
}

void FileCommands::ApplyAddresses(int row) {
  Disc& disc = window_.OpenDisc();
  FileListModel& model = panes_.List().Model();
  const std::int32_t sector = panes_.CurrentSector();
  const ListRow entry = model.Rows()[static_cast<std::size_t>(row)];
  // After a refused OK the close box counts as accepted. The texts may be no addresses then, and
  // nothing is written.
  if (!CheckAddresses(addr_->LoadText, addr_->ExecText).empty()) return;
  const History::Step step(window_.Steps(), "Set Addresses");
  const Outcome outcome = SetEntryAddresses(disc, sector, entry.Name(), addr_->LoadText,
                                            addr_->ExecText, entry.StartSector());
  if (outcome != Outcome::kDone) return;
  const std::int32_t slot = FindEntry(disc, sector, entry.Name(), entry.StartSector());
  if (slot == -1) return;
  model.SetRow(row, ReadRow(disc, sector, slot));
  ShowFreeSpace(disc);
}

// A delete may compact the disc. The directory and the rows then have new sectors, so each turn of
// the loop reads its sectors again. The rows keep their places, since the list is only filled at
// the end.
void FileCommands::mnuFileDelete() {
  if (panes_.CurrentItem() == nullptr) return;
  Disc& disc = window_.OpenDisc();
  const TrackedSector directory(disc, panes_.CurrentSector());
  const FileListModel& model = panes_.List().Model();
  History::Step step(window_.Steps(), "Delete " + panes_.CurrentItem()->Name());
  int deleted = 0;
  bool directoryWent = false;
  for (int row = 0; row < model.rowCount(); ++row) {
    if (!panes_.List().IsSelected(row)) continue;
    const ListRow entry = model.Rows()[static_cast<std::size_t>(row)];
    const bool ignoreLock = window_.Checked("mnuOptionsDelete");
    if (!entry.IsDirectory()) {
      if (DeleteEntry(disc, directory, entry.Name(), false, ignoreLock, entry.StartSector()) !=
          Outcome::kDone) {
        break;
      }
      disc.Host.PumpEvents();
    } else {
      if (DeleteTree(disc, directory, entry.StartSector(), entry.Name(), ignoreLock,
                     window_.Checked("mnuOptionsEmpty")) != Outcome::kDone) {
        break;
      }
      directoryWent = true;
    }
    step.SetName("Delete " + CountOf(++deleted, "Object"));
  }
  if (directoryWent) panes_.RebuildTree();
  panes_.GetRootTitles();
  if (deleted > 0) TellDeleted(window_, CountOf(deleted, "object"));
}

void FileCommands::mnuFileRename() {
  if (panes_.CurrentItem() == nullptr || panes_.List().IsEditing()) return;
  panes_.List().setFocus();
  panes_.List().EditName(panes_.CurrentRow());
}

void FileCommands::mnuFileExport() {
  const FileList& list = panes_.List();
  if (!list.selectionModel()->hasSelection()) return;
  const std::string folder = AskFolder(&window_, QStringLiteral("Browse For Folder"),
                                       QStringLiteral("Select destination for file"));
  if (folder.empty()) return;
  const BusyPointer busy(window_.OpenDisc().Host);
  const auto& rows = panes_.List().Model().Rows();
  HostNamesOfFolder names;
  for (std::size_t row = 0; row < rows.size(); ++row) {
    if (!list.IsSelected(static_cast<int>(row))) continue;
    ExportRow(window_.OpenDisc(), rows[row], JoinHostPath(folder, names.Take(rows[row].Name())));
  }
}

// This doesn't change the tree: a directory that is renamed in the list keeps its old text in the
// tree until a rebuild.
void FileCommands::lvwDB_AfterLabelEdit(int row, const QString& text) {
  if (text.isEmpty() || panes_.CurrentItem() == nullptr) return;
  FileListModel& model = panes_.List().Model();
  const ListRow former = model.Rows()[static_cast<std::size_t>(row)];
  const std::string name = TypedToBbc(text);
  const History::Step step(window_.Steps(), "Rename " + former.Name());
  if (RenameEntry(window_.OpenDisc(), name, former.Name(), panes_.CurrentSector(),
                  window_.Checked("mnuOptionsDelete"), former.StartSector()) == Outcome::kDone) {
    // The row keeps its old sequence number until the list is filled again.
    Entry renamed = former.Item;
    renamed.Rename(name);
    model.SetRow(row, MakeRow(renamed));
  }
  panes_.ShowRowPath(row);
}

}  // namespace sectorbox
