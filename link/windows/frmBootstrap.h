#pragma once

#include <QDialog>

#include "link/transfer/Bootstrap.h"
#include "link/wire/Link.h"

class QProgressBar;
class QPushButton;

namespace sectorbox {

// What the two bootstrap dialogs share: what to type at the BBC, Go and Cancel. The dialog keeps
// its state in Link::AbortRequested: if it is set, the dialog is idle. The constructor sets it, so
// that Cancel closes the dialog. Cancel during a send stops the send, and the dialog closes when
// the send has ended. link outlives the dialog.
class frmBootstrap : public QDialog {
 protected:
  // name is the dialog's object name, caption its title.
  frmBootstrap(Link& link, const char* name, const char* caption, QWidget* parent);

  // Sends the dialog's program. Called once, by Go; it runs events and returns when all has been
  // sent, or after a Cancel. HostError if a file or the port fails.
  virtual void SendProgram(Link& link, const BootstrapProgress& progress) = 0;

  void reject() override;
  void closeEvent(QCloseEvent* event) override;

 private:
  void Arrange();
  void cmdGo_Click();
  void cmdCancel_Click();

  Link& link_;
  bool sending_ = false;
  QProgressBar* pb_;
  QPushButton* cmdGo_;
  QPushButton* cmdCancel_;
};

}  // namespace sectorbox
