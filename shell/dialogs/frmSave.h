#pragma once

#include <QDialog>

#include "disc/store/Disc.h"

class QLabel;
class QProgressBar;

namespace sectorbox {

// The progress of a copy from or to the whole disc. While it is up it keeps the user from all other
// windows; Abort clears the disc's go-on flag, which the copy tests after each sector.
class frmSave : public QDialog {
 public:
  frmSave(QWidget* parent, Disc& disc);
  ~frmSave() override;

  void Show(const QString& line, double percent);

 protected:
  // Only Abort or the end of the copy take it away.
  void reject() override;
  void closeEvent(QCloseEvent* event) override;

 private:
  Disc& disc_;
  QLabel* lblSave_;
  QProgressBar* bar_;
};

}  // namespace sectorbox
