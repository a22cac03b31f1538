#pragma once

#include <QDialog>

#include "cfcard/cards/CardDrives.h"
#include "disc/store/Disc.h"

class QCheckBox;
class QComboBox;
class QLabel;

namespace sectorbox {

// What the two card dialogs share: the list of partitions with its prompt, the tick box for
// partitions that aren't of ADFS, the scan, and the window place, which both keep. A file that the
// user drops on the dialog counts as a raw card from then on (setting "CardFiles", a path a line).
class frmCardChoice : public QDialog {
 protected:
  // drives and disc outlive the dialog.
  frmCardChoice(QWidget* parent, Disc& disc, CardDrives& drives);
  ~frmCardChoice() override;

  // Fills the list and puts the finished dialog in its place. Each dialog calls it at the end of
  // its constructor.
  void Load();
  // Looks at every drive and fills the list. The row that was chosen before stays chosen if the
  // list still has it.
  void ScanCFCards();
  // What Ok asks first. If the list has rows and none is chosen, the list gets the focus, and the
  // dialog has to stay open: the result is false.
  [[nodiscard]] bool HasChoice();
  // Takes the chosen row: ImageName names it and ProgressRunning is set. If the list has no rows,
  // ProgressRunning is cleared. True if the list has rows.
  bool TakeChoice();
  // For work that uses the store from now on: the user can't start a scan any more, neither with a
  // row or a tick nor with a drop.
  void DisableChoice();

  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

  Disc& disc_;
  CardDrives& drives_;
  QLabel* lblCFCard_;
  QComboBox* cmbCFCard_;
  QCheckBox* chkNonADFS_;

 private:
  void chkNonADFS_Click();

  bool includeNonADFS_ = false;
};

}  // namespace sectorbox
