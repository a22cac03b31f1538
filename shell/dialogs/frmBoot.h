#pragma once

#include <QDialog>
#include <QRadioButton>
#include <array>

#include "disc/store/Disc.h"

namespace sectorbox {

// "Set Boot Attributes": shows the low two bits of the map's boot byte; OK writes the choice over
// the whole byte. Only that byte changes: neither the map's checksum nor the dirty flag follow, so
// the caption shows no "*" and exit asks nothing.
class frmBoot : public QDialog {
 public:
  frmBoot(QWidget* parent, Disc& disc);

 private:
  void cmdOK_Click();

  Disc& disc_;
  std::array<QRadioButton*, 4> options_{};
};

}  // namespace sectorbox
