#include "shell/commands/ViewCommands.h"

#include "shell/window/MainWindow.h"

namespace sectorbox {

ViewCommands::ViewCommands(MainWindow& window) : window_(window) {
  for (const TextViewKind& kind : TextViews()) ConnectEntries(kind);
}

// The views use what this owns. While the program runs they are all gone, or about to go with it.
ViewCommands::~ViewCommands() {
  for (const QPointer<frmView>& view : views_) delete view;
}

template <typename Command>
void ViewCommands::OnEntry(const std::string& entry, Command command) {
  const bool exists = window_.findChild<QAction*>(QString::fromStdString(entry)) != nullptr;
  if (exists) window_.OnCommand(entry.c_str(), command);
}

// The object names of a view's entries are the menu's stem and the view's name: mnuDiscMap,
// mnuFileViewCat, mnuDirectoryCat. A view of which the menu tree has no entry is reached through
// sbx alone.
void ViewCommands::ConnectEntries(const TextViewKind& kind) {
  const std::string name(kind.Name);
  if (kind.Subject == ViewSubject::kDisc) {
    OnEntry("mnuDisc" + name, [this, &kind] { Launch(kind.Number, {}); });
    return;
  }
  OnEntry("mnuFileView" + name, [this, &kind] { LaunchOnRow(kind.Number); });
  if (kind.Subject != ViewSubject::kDirectory) return;
  OnEntry("mnuDirectory" + name, [this, &kind] { LaunchOnNode(kind.DirectoryNumber); });
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

// Nothing but the window itself is touched after Show_File: the main window may have been closed
// while the view ran.
void ViewCommands::Launch(int number, const ViewTarget& target) {
  std::erase_if(views_, [](const QPointer<frmView>& view) { return view.isNull(); });
  auto* view = new frmView(window_.OpenDisc(), shared_);
  view->Tag = QString::number(number);
  view->ViewAs = window_.Checked("mnuOptionsViewAs");
  views_.push_back(view);
  view->Show_File(target);
}

}  // namespace sectorbox
