#pragma once

#include <QObject>
#include <QPointer>
#include <vector>

#include "viewers/windows/frmView.h"

namespace sectorbox {

class MainWindow;

// The text views of the Disc, Directory and File menus. Each use makes a new window; earlier ones
// stay open. They go by the current row and the current node, not by the selection, and show any
// file in any way.
class ViewCommands : public QObject {
 public:
  explicit ViewCommands(MainWindow& window);
  ~ViewCommands() override;

  // The program's one search text, for the other windows that search.
  TextSearch& Search() { return shared_.Search; }

 private:
  void OnFileView(const char* entry, ViewNumber number);
  void OnDirectoryView(const char* entry, ViewNumber number);
  void Launch(ViewNumber number, ViewTarget target);

  MainWindow& window_;
  ViewShared shared_;
  std::vector<QPointer<frmView>> views_;
};

}  // namespace sectorbox
