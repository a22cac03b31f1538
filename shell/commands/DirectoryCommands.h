#pragma once

#include <QObject>
#include <QString>

namespace sectorbox {

class DirNode;
class frmMain;

// The Directory menu, but for its views. All commands act on the current node.
class DirectoryCommands : public QObject {
 public:
  explicit DirectoryCommands(frmMain& window);

 private:
  void mnuDirectoryNew();
  void mnuDirectoryDelete();
  void mnuDirectoryRename();
  void mnuDirectoryExport();
  void mnuDirectoryTitle();
  void tvwDB_AfterLabelEdit(DirNode& node, const QString& text);

  frmMain& window_;
};

}  // namespace sectorbox
