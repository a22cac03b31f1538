#pragma once

#include <QDialog>
#include <QString>

#include "link/wire/Link.h"

class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;

namespace sectorbox {

// The progress of a transfer, in both directions. It keeps nobody from the other windows, stays up
// after the end until OK is pressed, and deletes itself when it closes. link outlives it.
class frmRX : public QDialog {
 public:
  frmRX(Link& link, const QString& caption, QWidget* parent);

  void ShowChunk(const QString& text);
  void ShowTotal(const QString& text);
  void ShowCounters(const TransferCounters& counters);
  void ShowPercent(float percent);
  // The transfer is over: OK closes from now on.
  void Finish();
  // Closes without a word to the transfer.
  void Unload();

 protected:
  // Escape and the close box are Abort while the transfer runs, so that none goes on unseen.
  void reject() override;
  void closeEvent(QCloseEvent* event) override;

 private:
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
