#pragma once

#include <QObject>

namespace sectorbox {

class frmAbout;
class frmMain;

// The Help menu. The program ships without a help file, which both help entries say.
class HelpCommands : public QObject {
 public:
  explicit HelpCommands(frmMain& window);

 private:
  frmMain& window_;
  frmAbout* about_ = nullptr;  // made at the first use and used again
};

}  // namespace sectorbox
