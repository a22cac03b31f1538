#pragma once

#include <QDialog>

#include "disc/store/Disc.h"

class QLabel;
class QProgressBar;

namespace sectorbox {

// The progress of a copy from or to the whole disc. While it is open the user can use no other
// window. The constructor sets the disc's flag ProgressRunning. Abort clears the flag. The copy
// tests it each time it shows its progress.
class frmSave : public QDialog {
 public:
  frmSave(QWidget* parent, Disc& disc);
  ~frmSave() override;

  void Show(const QString& line, double percent);

 protected:
  // Escape and the close box do what Abort does. The dialog closes when the copy has ended.
  void reject() override;
  void closeEvent(QCloseEvent* event) override;

 private:
  Disc& disc_;
  QLabel* lblSave_;
  QProgressBar* bar_;
};

}  // namespace sectorbox
