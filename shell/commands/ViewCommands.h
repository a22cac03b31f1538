#pragma once

#include <QObject>
#include <QPointer>
#include <string>
#include <vector>

#include "viewers/table/TextViews.h"
#include "viewers/windows/frmView.h"

namespace sectorbox {

class MainWindow;

// The text views of the Disc, Directory and File menus. Each use makes a new window; earlier ones
// stay open. A view shows the current row or the current node, whatever is selected. Every view can
// show every file.
class ViewCommands : public QObject {
 public:
  explicit ViewCommands(MainWindow& window);
  ~ViewCommands() override;

  // The program's one search text, for the other windows that search.
  TextSearch& Search() { return shared_.Search; }

 private:
  void ConnectEntries(const TextViewKind& kind);
  // Runs the command at each choice of the entry, if the menu tree has one of that name.
  template <typename Command>
  void OnEntry(const std::string& entry, Command command);
  void LaunchOnRow(int number);
  void LaunchOnNode(int number);
  void Launch(int number, const ViewTarget& target);

  MainWindow& window_;
  ViewShared shared_;
  std::vector<QPointer<frmView>> views_;
};

}  // namespace sectorbox
