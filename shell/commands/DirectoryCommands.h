#pragma once

#include <QObject>
#include <QString>

namespace sectorbox {

class DirNode;
class MainWindow;
class Panes;

// The Directory menu without its views. All commands act on the current node.
class DirectoryCommands : public QObject {
 public:
  DirectoryCommands(MainWindow& window, Panes& panes);

 private:
  void mnuDirectoryNew();
  void mnuDirectoryDelete();
  void mnuDirectoryRename();
  void mnuDirectoryExport();
  void mnuDirectoryTitle();
  void tvwDB_AfterLabelEdit(DirNode& node, const QString& text);

  MainWindow& window_;
  Panes& panes_;
};

}  // namespace sectorbox
