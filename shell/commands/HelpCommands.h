#pragma once

#include <QObject>

namespace sectorbox {

class frmAbout;
class MainWindow;

// The Help menu. The program ships without a help file, which both help entries say.
class HelpCommands : public QObject {
 public:
  explicit HelpCommands(MainWindow& window);

 private:
  MainWindow& window_;
  frmAbout* about_ = nullptr;  // made at the first use and used again
};

}  // namespace sectorbox
