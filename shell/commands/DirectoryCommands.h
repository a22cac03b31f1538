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
  // The directory that was made last, and its step.
  std::int32_t newSector_ = -1;
  std::int64_t newStep_ = 0;
};

}  // namespace sectorbox
