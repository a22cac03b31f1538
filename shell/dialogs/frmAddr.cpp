#include "shell/dialogs/frmAddr.h"

#include <QGridLayout>
#include <QLabel>
#include <QShowEvent>

#include "disc/change/Addresses.h"
#include "shell/dialogs/DialogButtons.h"
#include "toolkit/Boxes.h"
#include "toolkit/Captions.h"
#include "toolkit/Text.h"

namespace sectorbox {
namespace {

QLabel* MakeLabel(const char* name, const char* caption, QLineEdit* field, QWidget* parent) {
  auto* label = new QLabel(QString::fromLatin1(caption), parent);
  label->setObjectName(QString::fromLatin1(name));
  label->setBuddy(field);
  return label;
}

}  // namespace

frmAddr::frmAddr(QWidget* parent)
    : QDialog(parent), txtLoad_(new QLineEdit(this)), txtExec_(new QLineEdit(this)) {
  setObjectName(QStringLiteral("frmAddr"));
  setWindowTitle(QStringLiteral("Set File Addresses"));
  txtLoad_->setObjectName(QStringLiteral("txtLoad"));
  txtExec_->setObjectName(QStringLiteral("txtExec"));
  txtLoad_->setPlaceholderText(QStringLiteral("FFFF1900"));
  txtExec_->setPlaceholderText(QStringLiteral("FFFF8023"));
  for (QLineEdit* field : {txtLoad_, txtExec_}) {
    field->setToolTip(QStringLiteral("Up to eight hexadecimal digits (no & needed)"));
  }
  const OKCancel buttons(this);
  connect(buttons.OK, &QPushButton::clicked, this, [this] { cmdOK_Click(); });
  connect(buttons.Cancel, &QPushButton::clicked, this, [this] { cmdCancel_Click(); });
  auto* layout = new QGridLayout(this);
  layout->addWidget(MakeLabel("lblLoad", "Load Address", txtLoad_, this), 0, 0);
  layout->addWidget(txtLoad_, 0, 1);
  layout->addWidget(MakeLabel("lblExec", "Exec Address", txtExec_, this), 1, 0);
  layout->addWidget(txtExec_, 1, 1);
  layout->addWidget(buttons.Box, 2, 0, 1, 2);
  layout->setSizeConstraint(QLayout::SetFixedSize);
  MakeRoomForCaption(*this);
}

void frmAddr::showEvent(QShowEvent* event) {
  QDialog::showEvent(event);
  // The window also gets this event when the user has minimised it and opens it again. Then the
  // texts that the user has typed stay.
  if (event->spontaneous()) return;
  txtLoad_->setText(FromBbc(LoadText));
  txtExec_->setText(FromBbc(ExecText));
  txtLoad_->selectAll();
  txtLoad_->setFocus();
}

// After a refusal the dialog stays open with what the user typed.
void frmAddr::cmdOK_Click() {
  LoadText = ToBbc(txtLoad_->text());
  ExecText = ToBbc(txtExec_->text());
  DialogAccepted = true;
  const std::string refusal = CheckAddresses(LoadText, ExecText);
  if (!refusal.empty()) {
    ShowBox(this, FromBbc(refusal), QStringLiteral("Error"));
    return;
  }
  accept();
}

void frmAddr::cmdCancel_Click() {
  DialogAccepted = false;
  QDialog::reject();
}

}  // namespace sectorbox
