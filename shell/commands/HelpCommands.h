#pragma once

#include <QObject>

namespace sectorbox {

class frmAbout;
class MainWindow;

// The Help menu. The program has no help file. Both help entries tell the user so.
class HelpCommands : public QObject {
 public:
  explicit HelpCommands(MainWindow& window);

 private:
  MainWindow& window_;
  frmAbout* about_ = nullptr;  // made at the first use and used again
};

}  // namespace sectorbox
