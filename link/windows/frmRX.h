#pragma once

#include <QDialog>
#include <QString>

#include "link/wire/Link.h"

class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;

namespace sectorbox {

// Shows the progress of a transfer, in both directions. The user can go on using the other windows.
// The dialog stays after the transfer's end until the user presses OK, and deletes itself when it
// closes. link outlives it.
class frmRX : public QDialog {
 public:
  frmRX(Link& link, const QString& caption, QWidget* parent);

  void ShowChunk(const QString& text);
  void ShowTotal(const QString& text);
  void ShowCounters(const TransferCounters& counters);
  void ShowPercent(float percent);
  // The transfer is over: OK is enabled, and closes the dialog.
  void Finish();
  // Closes the dialog and leaves AbortRequested as it is.
  void Unload();

 protected:
  // While the transfer runs, Escape and the close box do what Abort does, so that no transfer goes
  // on without its dialog.
  void reject() override;
  void closeEvent(QCloseEvent* event) override;

 private:
  void Arrange();
  void Abort();

  Link& link_;
  bool over_ = false;
  QLabel* lblRX_;
  QLabel* lblTot_;
  QLineEdit* txtRetry_;
  QLineEdit* txtCRC_;
  QLineEdit* txtBadSector_;
  QProgressBar* pb_;
  QPushButton* cmdAbort_;
  QPushButton* cmdOK_;
};

}  // namespace sectorbox
