#pragma once

#include <QObject>

namespace sectorbox {

class frmMain;

// The teletext and screen mode views of the File menu.
class PictureCommands : public QObject {
 public:
  explicit PictureCommands(frmMain& window);
};

}  // namespace sectorbox
