#include "shell/commands/ViewCommands.h"

#include "shell/window/MainWindow.h"
#include "shell/window/ViewEntries.h"

namespace sectorbox {

ViewCommands::ViewCommands(MainWindow& window) : window_(window) {
  for (const TextViewKind& kind : TextViews()) ConnectEntries(kind);
}

// The views use what this object owns, so it deletes those that are still open.
ViewCommands::~ViewCommands() {
  for (const QPointer<frmView>& view : views_) delete view;
}

template <typename Command>
void ViewCommands::OnEntry(const std::string& entry, Command command) {
  if (FindViewEntry(window_, entry) != nullptr) window_.OnCommand(entry.c_str(), command);
}

void ViewCommands::ConnectEntries(const TextViewKind& kind) {
  if (kind.Subject == ViewSubject::kDisc) {
    OnEntry(DiscEntryOf(kind), [this, &kind] { Launch(kind.Number, {}); });
    return;
  }
  OnEntry(FileEntryOf(kind), [this, &kind] { LaunchOnRow(kind.Number); });
  if (kind.Subject != ViewSubject::kDirectory) return;
  OnEntry(DirectoryEntryOf(kind), [this, &kind] { LaunchOnNode(kind.DirectoryNumber); });
}

void ViewCommands::LaunchOnRow(int number) {
  const ListRow* row = window_.CurrentItem();
  if (row != nullptr) Launch(number, TargetOf(*row));
}

void ViewCommands::LaunchOnNode(int number) {
  const auto node = window_.CurrentNode();
  if (!node) return;
  ViewTarget target;
  target.Sector = node->Tag;
  Launch(number, target);
}

// The main window may be closed while the view runs. So nothing is used after Show_File, neither
// this object nor the main window.
void ViewCommands::Launch(int number, const ViewTarget& target) {
  std::erase_if(views_, [](const QPointer<frmView>& view) { return view.isNull(); });
  auto* view = new frmView(window_.OpenDisc(), shared_);
  view->Tag = QString::number(number);
  view->ViewAs = window_.Checked("mnuOptionsViewAs");
  views_.push_back(view);
  view->Show_File(target);
}

}  // namespace sectorbox
