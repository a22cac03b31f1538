#include "shell/dialogs/frmAttr.h"

#include <QShowEvent>
#include <QVBoxLayout>

#include "shell/dialogs/DialogButtons.h"
#include "toolkit/Captions.h"

namespace sectorbox {

frmAttr::frmAttr(QWidget* parent)
    : QDialog(parent),
      chkRead_(new QCheckBox(QStringLiteral("Read"), this)),
      chkWrite_(new QCheckBox(QStringLiteral("Write"), this)),
      chkLocked_(new QCheckBox(QStringLiteral("Locked"), this)) {
  setObjectName(QStringLiteral("frmAttr"));
  setWindowTitle(QStringLiteral("Set File Attributes"));
  chkRead_->setObjectName(QStringLiteral("chkRead"));
  chkWrite_->setObjectName(QStringLiteral("chkWrite"));
  chkLocked_->setObjectName(QStringLiteral("chkLocked"));
  const OKCancel buttons(this);
  connect(buttons.OK, &QPushButton::clicked, this, [this] { cmdOK_Click(); });
  connect(buttons.Cancel, &QPushButton::clicked, this, [this] { cmdCancel_Click(); });
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(chkRead_);
  layout->addWidget(chkWrite_);
  layout->addWidget(chkLocked_);
  layout->addSpacing(6);
  layout->addWidget(buttons.Box);
  layout->setSizeConstraint(QLayout::SetFixedSize);
  MakeRoomForCaption(*this);
}

void frmAttr::showEvent(QShowEvent* event) {
  QDialog::showEvent(event);
  // The window also gets this event when the user has minimised it and opens it again. Then the
  // ticks that the user has set stay.
  if (event->spontaneous()) return;
  chkRead_->setChecked(AttrRead);
  chkWrite_->setChecked(AttrWrite);
  chkLocked_->setChecked(AttrLocked);
  chkRead_->setFocus();
}

// If a check box is in a third state, it counts as ticked for Locked and as not ticked for the
// others, because a lock too many does less harm than a lock too few.
void frmAttr::cmdOK_Click() {
  AttrRead = chkRead_->checkState() == Qt::Checked;
  AttrWrite = chkWrite_->checkState() == Qt::Checked;
  AttrLocked = chkLocked_->checkState() != Qt::Unchecked;
  DialogAccepted = true;
  accept();
}

void frmAttr::cmdCancel_Click() {
  DialogAccepted = false;
  QDialog::reject();
}

}  // namespace sectorbox
