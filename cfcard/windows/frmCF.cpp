#include "cfcard/windows/frmCF.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace sectorbox {

frmCF::frmCF(QWidget* parent, Disc& disc, CardDrives& drives)
    : frmCardChoice(parent, disc, drives) {
  setObjectName(QStringLiteral("frmCF"));
  setWindowTitle(QStringLiteral("Select CF Card"));
  // These are buttons, although their names begin as those of menu entries do.
  auto* mnuOK = new QPushButton(QStringLiteral("Ok"), this);
  mnuOK->setObjectName(QStringLiteral("mnuOK"));
  mnuOK->setDefault(true);
  auto* mnuCancel = new QPushButton(QStringLiteral("Cancel"), this);
  mnuCancel->setObjectName(QStringLiteral("mnuCancel"));
  connect(mnuOK, &QPushButton::clicked, this, [this] { mnuOK_Click(); });
  connect(mnuCancel, &QPushButton::clicked, this, [this] { reject(); });
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(mnuOK);
  buttons->addWidget(mnuCancel);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(lblCFCard_);
  layout->addWidget(cmbCFCard_);
  layout->addWidget(chkNonADFS_);
  layout->addSpacing(6);
  layout->addLayout(buttons);
  layout->setSizeConstraint(QLayout::SetFixedSize);
  Load();
}

void frmCF::mnuOK_Click() {
  if (!HasChoice()) return;
  TakeChoice();
  accept();
}

void frmCF::reject() {
  disc_.ProgressRunning = false;
  frmCardChoice::reject();
}

}  // namespace sectorbox
