#pragma once

#include <QObject>

namespace sectorbox {

class frmMain;

// The CF Card menu.
class CFCommands : public QObject {
 public:
  explicit CFCommands(frmMain& window);
};

}  // namespace sectorbox
