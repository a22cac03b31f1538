#include "shell/commands/ViewCommands.h"

#include "shell/window/MainWindow.h"

namespace sectorbox {

ViewCommands::ViewCommands(MainWindow& window) : window_(window) {
  OnFileView("mnuFileViewText", kViewText);
  OnFileView("mnuFileViewHex", kViewHex);
  OnFileView("mnuFileViewBasic", kViewBasic);
  OnFileView("mnuFileViewCat", kViewFileCat);
  OnFileView("mnuFileViewCatAll", kViewFileCatAll);
  OnFileView("mnuFileViewEx", kViewFileEx);
  OnFileView("mnuFileViewExAll", kViewFileExAll);
  OnFileView("mnuFileViewDis", kViewDis);
  OnFileView("mnuFileViewWordwise", kViewWordwise);
  OnDirectoryView("mnuDirectoryCat", kViewDirectoryCat);
  OnDirectoryView("mnuDirectoryCatAll", kViewDirectoryCatAll);
  OnDirectoryView("mnuDirectoryEx", kViewDirectoryEx);
  OnDirectoryView("mnuDirectoryExAll", kViewDirectoryExAll);
  window.OnCommand("mnuDiscMap", [this] { Launch(kViewMap, {}); });
}

// The views use what this owns. While the program runs they are all gone, or about to go with it.
ViewCommands::~ViewCommands() {
  for (const QPointer<frmView>& view : views_) delete view;
}

void ViewCommands::OnFileView(const char* entry, ViewNumber number) {
  window_.OnCommand(entry, [this, number] {
    const ListRow* row = window_.CurrentItem();
    if (row == nullptr) return;
    ViewTarget target;
    target.CurrentItem = *row;
    Launch(number, target);
  });
}

void ViewCommands::OnDirectoryView(const char* entry, ViewNumber number) {
  window_.OnCommand(entry, [this, number] {
    const auto node = window_.CurrentNode();
    if (!node) return;
    ViewTarget target;
    target.CurrentNodeTag = node->Tag;
    Launch(number, target);
  });
}

// Nothing but the window itself is touched after Show_File: the main window may have been closed
// while the view ran.
void ViewCommands::Launch(ViewNumber number, ViewTarget target) {
  target.ViewAs = window_.Checked("mnuOptionsViewAs");
  std::erase_if(views_, [](const QPointer<frmView>& view) { return view.isNull(); });
  auto* view = new frmView(window_.OpenDisc(), shared_);
  view->Tag = QString::number(number);
  views_.push_back(view);
  view->Show_File(target);
}

}  // namespace sectorbox
