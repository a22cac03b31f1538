#pragma once

#include <QDialog>
#include <functional>

#include "link/transfer/Bootstrap.h"
#include "link/wire/Link.h"

class QProgressBar;
class QPushButton;

namespace sectorbox {

// What the two bootstrap dialogs share: what to type at the BBC, Go and Cancel.
// Link::AbortRequested is the dialog's state: set means idle. Loading the dialog sets it, so that
// Cancel closes; Cancel during a send stops the send, and the dialog closes when that has ended.
// link outlives it.
class frmBootstrap : public QDialog {
 public:
  using Send = std::function<void(Link& link, const BootstrapProgress& progress)>;

 protected:
  frmBootstrap(Link& link, const char* name, const char* caption, Send send, QWidget* parent);

  void reject() override;
  void closeEvent(QCloseEvent* event) override;

 private:
  void cmdGo_Click();
  void cmdCancel_Click();

  Link& link_;
  Send send_;
  bool sending_ = false;
  QProgressBar* pb_;
  QPushButton* cmdGo_;
};

}  // namespace sectorbox
