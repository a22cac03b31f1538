#pragma once

#include <QDialog>

#include "cfcard/cards/CardDrives.h"
#include "disc/store/Disc.h"

class QCheckBox;
class QComboBox;
class QLabel;

namespace sectorbox {

// What the two card dialogs share: the list of partitions with its prompt, the box that takes in
// what isn't of ADFS, the scan, and the place that both keep. Files dropped on the dialog are taken
// for raw cards from then on (setting "CardFiles", a path a line).
class frmCardChoice : public QDialog {
 protected:
  // drives and disc outlive the dialog. scan fills the list.
  frmCardChoice(QWidget* parent, Disc& disc, CardDrives& drives);
  ~frmCardChoice() override;

  // To be called at the end of a dialog's constructor: fills the list and puts the finished dialog
  // in its place.
  void Load();
  // Looks at every drive and fills the list; a row that was chosen before is lost.
  void ScanCFCards();
  // Takes the chosen row: ImageName names it and ProgressRunning is set. Without any row in the
  // list ProgressRunning is cleared. An enabled list in which no row is chosen gives a lone comma,
  // which no open can use. True if the list had rows.
  bool TakeChoice();
  // For work that uses the store from here on: no row, tick or drop may start a scan any more.
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
