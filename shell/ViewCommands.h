#pragma once

#include <QObject>

namespace sectorbox {

class frmMain;

// The text views of the Disc, Directory and File menus.
class ViewCommands : public QObject {
 public:
  explicit ViewCommands(frmMain& window);
};

}  // namespace sectorbox
