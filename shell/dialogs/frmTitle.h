#pragma once

#include <QDialog>
#include <QLineEdit>

#include "disc/store/Disc.h"

namespace sectorbox {

// "Set Directory Title" of one directory. Any text goes; the disc cuts what it can't hold.
class frmTitle : public QDialog {
 public:
  frmTitle(QWidget* parent, Disc& disc, std::int32_t DirSector);

 private:
  void cmdOK_Click();

  Disc& disc_;
  std::int32_t sector_;
  QLineEdit* txtTitle_;
};

}  // namespace sectorbox
