#include "cfcard/windows/frmFormatCF.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include "toolkit/Text.h"

namespace sectorbox {

frmFormatCF::frmFormatCF(QWidget* parent, Disc& disc, CardDrives& drives)
    : frmCardChoice(parent, disc, drives),
      cmbCapacity_(new QComboBox(this)),
      chkQuick_(new QCheckBox(QStringLiteral("Quick Format"), this)),
      btnOK_(new QPushButton(QStringLiteral("Ok"), this)),
      btnCancel_(new QPushButton(QStringLiteral("Cancel"), this)),
      btnAbort_(new QPushButton(QStringLiteral("Abort"), this)),
      lblFormat_(new QLabel(this)),
      pb1_(new QProgressBar(this)) {
  setObjectName(QStringLiteral("frmFormatCF"));
  setWindowTitle(QStringLiteral("Format CF Card"));
  MakeControls();
  Arrange();
  Load();
}

void frmFormatCF::MakeControls() {
  cmbCapacity_->setObjectName(QStringLiteral("cmbCapacity"));
  cmbCapacity_->setAccessibleName(QStringLiteral("Capacity"));
  for (const CardSize& size : kCardSizes) cmbCapacity_->addItem(FromBbc(size.Capacity));
  chkQuick_->setObjectName(QStringLiteral("chkQuick"));
  btnOK_->setObjectName(QStringLiteral("btnOK"));
  btnCancel_->setObjectName(QStringLiteral("btnCancel"));
  btnAbort_->setObjectName(QStringLiteral("btnAbort"));
  btnAbort_->setEnabled(false);
  // The Return key must not start a format by accident.
  for (QPushButton* button : {btnOK_, btnAbort_}) button->setAutoDefault(false);
  btnCancel_->setDefault(true);
  lblFormat_->setObjectName(QStringLiteral("lblFormat"));
  pb1_->setObjectName(QStringLiteral("pb1"));
  pb1_->setAccessibleName(QStringLiteral("Progress"));
  pb1_->setRange(0, 100);
  pb1_->setValue(0);
  connect(btnOK_, &QPushButton::clicked, this, [this] { btnOK_Click(); });
  connect(btnCancel_, &QPushButton::clicked, this, [this] { reject(); });
  connect(btnAbort_, &QPushButton::clicked, this, [this] { btnAbort_Click(); });
}

void frmFormatCF::Arrange() {
  auto* size = new QHBoxLayout;
  size->addWidget(cmbCapacity_);
  size->addWidget(chkQuick_);
  size->addStretch();
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  for (QPushButton* button : {btnOK_, btnCancel_, btnAbort_}) buttons->addWidget(button);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(lblCFCard_);
  layout->addWidget(cmbCFCard_);
  layout->addWidget(chkNonADFS_);
  layout->addSpacing(6);
  layout->addLayout(size);
  layout->addWidget(lblFormat_);
  layout->addWidget(pb1_);
  layout->addLayout(buttons);
  layout->setSizeConstraint(QLayout::SetFixedSize);
}

void frmFormatCF::btnOK_Click() {
  if (!HasChoice()) return;
  if (TakeChoice()) {
    FormatCFDisc(disc_, *this, ToBbc(cmbCapacity_->currentText()), chkQuick_->isChecked());
  }
  running_ = false;
  accept();
}

void frmFormatCF::btnAbort_Click() {
  disc_.ProgressRunning = false;
}

void frmFormatCF::reject() {
  // During a format the close box and Escape only do what Abort does.
  disc_.ProgressRunning = false;
  if (running_) return;
  // If there was no drive to look at, a floppy image may still be open. Closing it would write it
  // to its file, but the user may have just declined to save it.
  if (!disc_.TheDisc.InMemory()) disc_.TheDisc.CloseFile();
  frmCardChoice::reject();
}

void frmFormatCF::FormatStarted() {
  running_ = true;
  DisableChoice();
  cmbCapacity_->setEnabled(false);
  chkQuick_->setEnabled(false);
  btnOK_->setEnabled(false);
  btnCancel_->setEnabled(false);
  btnAbort_->setEnabled(true);
  // The control that had the focus is disabled now. Abort is the one that can still be used.
  btnAbort_->setFocus();
}

void frmFormatCF::ShowFormat(const std::string& line, double percent) {
  lblFormat_->setText(FromBbc(line));
  pb1_->setValue(static_cast<int>(percent));
}

}  // namespace sectorbox
