#pragma once

#include <QObject>

namespace sectorbox {

class frmMain;

// The Disc menu, but for the free space map, which is a view.
class DiscCommands : public QObject {
 public:
  explicit DiscCommands(frmMain& window);

 private:
  void mnuDiscBoot();
  void mnuDiscCompact();
  void mnuDiscResizeUser();
  void Resize(std::int32_t tracks);

  frmMain& window_;
};

}  // namespace sectorbox
