// The keys, pop-up menus and toolbar of the panes. Each of them runs a menu entry or an operation
// of the panes.

#include <QKeyEvent>
#include <QMenu>
#include <utility>

#include "shell/icons/Icons.h"
#include "shell/panes/Panes.h"

namespace sectorbox {

void Panes::PopUp(const char* menu, const QPoint& global) {
  window_.Action(menu)->menu()->popup(global);
}

bool Panes::eventFilter(QObject* watched, QEvent* event) {
  if (SwallowInput(*event)) return true;
  if (event->type() == QEvent::KeyPress) {
    const auto& key = static_cast<QKeyEvent&>(*event);
    // While a name is edited, a key that comes here is one that the editor has no use for.
    if (watched == &Tree()) return Tree().IsEditing() || TreeKey(key);
    if (watched == &List()) return List().IsEditing() || ListKey(key);
  }
  return PaneLayout::eventFilter(watched, event);
}

bool Panes::SwallowInput(QEvent& event) {
  const auto refuses = [this](CommandKind kind) { return !window_.Guard().MayStart(kind); };
  switch (event.type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
      pressSwallowed_ = refuses(CommandKind::kSmall);
      return pressSwallowed_;
    case QEvent::MouseButtonRelease:
      return std::exchange(pressSwallowed_, false);
    case QEvent::KeyPress:
    case QEvent::ContextMenu:
      return refuses(CommandKind::kSmall);
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
      if (!refuses(CommandKind::kChange)) return false;
      event.ignore();
      return true;
    default:
      return false;
  }
}

bool Panes::TreeKey(const QKeyEvent& event) {
  switch (event.key()) {
    case Qt::Key_Delete:
      window_.Action("mnuDirectoryDelete")->trigger();
      return true;
    case Qt::Key_F2:
      window_.Action("mnuDirectoryRename")->trigger();
      return true;
    case Qt::Key_F5:
      (void)window_.Start(CommandKind::kSmall, [this] { RebuildTree(); });
      return true;
    default:
      return CommonKey(event);
  }
}

bool Panes::ListKey(const QKeyEvent& event) {
  switch (event.key()) {
    case Qt::Key_Delete:
      window_.Action("mnuFileDelete")->trigger();
      return true;
    case Qt::Key_F2:
      window_.Action("mnuFileRename")->trigger();
      return true;
    case Qt::Key_F5:
      (void)window_.Start(CommandKind::kSmall, [this] { GetRootTitles(); });
      return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
      if (CurrentItem() == nullptr || !CurrentItem()->IsDirectory()) return false;
      (void)window_.Start(CommandKind::kSmall, [this] { lvwDB_DblClick(CurrentRow()); });
      return true;
    default:
      return CommonKey(event);
  }
}

// No menu entry has a shortcut: the panes know what their keys mean.
bool Panes::CommonKey(const QKeyEvent& event) {
  const bool control = (event.modifiers() & Qt::ControlModifier) != 0;
  switch (event.key()) {
    case Qt::Key_A:
      return control && RunEntry("mnuFileSelectAll");
    case Qt::Key_O:
      return control && RunEntry("mnuDiscOpen");
    case Qt::Key_S:  // with Shift, too: every save asks for the name
      return control && RunEntry("mnuDiscSave");
    case Qt::Key_Z: {
      const bool shift = (event.modifiers() & Qt::ShiftModifier) != 0;
      return control && RunEntry(shift ? "mnuToolsRedo" : "mnuToolsUndo");
    }
    case Qt::Key_Y:
      return control && RunEntry("mnuToolsRedo");
    case Qt::Key_Up:
      if ((event.modifiers() & Qt::AltModifier) == 0) return false;
      GoUp();
      return true;
    case Qt::Key_Backspace:
      GoUp();
      return true;
    case Qt::Key_F10:
      return (event.modifiers() & Qt::ShiftModifier) != 0 && PopUpMenuOfPane();
    default:
      return false;
  }
}

bool Panes::RunEntry(const char* entry) {
  if (window_.Action(entry)->isEnabled()) window_.Action(entry)->trigger();
  return true;
}

bool Panes::PopUpMenuOfPane() {
  if (List().hasFocus()) {
    List().WantMenu();
  } else {
    Tree().WantMenu();
  }
  return true;
}

void Panes::GoUp() {
  if (CurrentNode_ == nullptr || CurrentNode_->Parent() == nullptr) return;
  (void)window_.Start(CommandKind::kSmall, [this] { tvwDB_NodeClick(*CurrentNode_->Parent()); });
}

template <typename Run>
QAction* Panes::AddTool(const char* key, const char* icon, Run run) {
  const QString name = QString::fromLatin1(key);
  QAction* action = Bar().addAction(LoadIcon(icon), name, this, run);
  action->setObjectName(name);
  action->setToolTip(name);
  action->setStatusTip({});
  return action;
}

void Panes::AddEntryTool(const char* key, const char* icon, const char* entry) {
  AddTool(key, icon, [this, entry] { RunEntry(entry); });
}

void Panes::AddLookTool(const char* key, const char* icon, ListLook look) {
  QAction* action = AddTool(key, icon, [this, look] { List().SetMode(look); });
  action->setCheckable(true);
  action->setChecked(List().Mode() == look);
  looks_.addAction(action);
}

void Panes::MakeToolBar() {
  AddEntryTool("New", "new", "mnuDiscNew80DSD");
  AddEntryTool("Open", "opendisc", "mnuDiscOpen");
  AddEntryTool("Save", "save", "mnuDiscSave");
  Bar().addSeparator();
  AddTool("Up One Level", "up", [this] { GoUp(); });
  AddLookTool("View Details", "details", ListLook::kReport);
  AddLookTool("View Large Icons", "largeicons", ListLook::kLargeIcons);
  AddLookTool("View List", "list", ListLook::kList);
  AddLookTool("View Small Icons", "smallicons", ListLook::kSmallIcons);
}

}  // namespace sectorbox
