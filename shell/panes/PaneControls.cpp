// The panes' keys, pop-up menus and toolbar: each leads to a menu entry or to one of their
// operations.

#include <QKeyEvent>
#include <QMenu>

#include "shell/panes/Panes.h"
#include "shell/program/Icons.h"

namespace sectorbox {

void Panes::PopUp(const char* menu, const QPoint& global) {
  window_.Action(menu)->menu()->popup(global);
}

bool Panes::TreeKey(QKeyEvent& event) {
  const bool control = (event.modifiers() & Qt::ControlModifier) != 0;
  switch (event.key()) {
    case Qt::Key_Delete:
      window_.Action("mnuDirectoryDelete")->trigger();
      return true;
    case Qt::Key_F2:
      window_.Action("mnuDirectoryRename")->trigger();
      return true;
    case Qt::Key_F5:
      window_.Guarded([this] { RebuildTree(); });
      return true;
    case Qt::Key_A:
      if (control) window_.Action("mnuFileSelectAll")->trigger();
      return control;
    default:
      return false;
  }
}

bool Panes::ListKey(QKeyEvent& event) {
  const bool control = (event.modifiers() & Qt::ControlModifier) != 0;
  switch (event.key()) {
    case Qt::Key_Delete:
      window_.Action("mnuFileDelete")->trigger();
      return true;
    case Qt::Key_F2:
      window_.Action("mnuFileRename")->trigger();
      return true;
    case Qt::Key_F5:
      window_.Guarded([this] { GetRootTitles(); });
      return true;
    case Qt::Key_A:
      if (control) window_.Action("mnuFileSelectAll")->trigger();
      return control;
    default:
      return false;
  }
}

void Panes::MakeToolBar() {
  struct Button {
    const char* Key;
    const char* Icon;
    std::function<void()> Run;
  };
  const auto trigger = [this](const char* name) {
    return [this, name] {
      if (window_.Action(name)->isEnabled()) window_.Action(name)->trigger();
    };
  };
  const auto mode = [this](ListLook wanted) { return [this, wanted] { List().SetMode(wanted); }; };
  const auto up = [this] {
    if (CurrentNode_ == nullptr || CurrentNode_->Parent() == nullptr) return;
    window_.Guarded([this] { tvwDB_NodeClick(*CurrentNode_->Parent()); });
  };
  const Button buttons[] = {{"New", "new", trigger("mnuDiscNew80DSD")},
                            {"Open", "opendisc", trigger("mnuDiscOpen")},
                            {"Save", "save", trigger("mnuDiscSave")},
                            {nullptr, nullptr, {}},
                            {"Up One Level", "up", up},
                            {"View Details", "details", mode(ListLook::kReport)},
                            {"View Large Icons", "largeicons", mode(ListLook::kLargeIcons)},
                            {"View List", "list", mode(ListLook::kList)},
                            {"View Small Icons", "smallicons", mode(ListLook::kSmallIcons)}};
  for (const Button& button : buttons) {
    if (button.Key == nullptr) {
      Bar().addSeparator();
      continue;
    }
    const QString key = QString::fromLatin1(button.Key);
    QAction* action = Bar().addAction(LoadIcon(button.Icon), key, this, button.Run);
    action->setObjectName(key);
    action->setToolTip(key);
    action->setStatusTip({});
  }
}

}  // namespace sectorbox
