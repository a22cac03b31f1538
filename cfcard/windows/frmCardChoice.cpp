#include "cfcard/windows/frmCardChoice.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDragEnterEvent>
#include <QLabel>
#include <QMimeData>

#include "cfcard/cards/ScanCFCards.h"
#include "cfcard/windows/frmCardFiles.h"
#include "toolkit/FileLists.h"
#include "toolkit/Text.h"
#include "toolkit/WindowPlace.h"

namespace sectorbox {

frmCardChoice::frmCardChoice(QWidget* parent, Disc& disc, CardDrives& drives)
    : QDialog(parent),
      disc_(disc),
      drives_(drives),
      lblCFCard_(new QLabel(FromBbc(kNoCardText), this)),
      cmbCFCard_(new QComboBox(this)),
      chkNonADFS_(new QCheckBox(QStringLiteral("Include Non ADFS Partitions"), this)) {
  lblCFCard_->setObjectName(QStringLiteral("lblCFCard"));
  cmbCFCard_->setObjectName(QStringLiteral("cmbCFCard"));
  cmbCFCard_->setMinimumWidth(260);
  cmbCFCard_->setAccessibleName(QStringLiteral("CF card"));
  lblCFCard_->setBuddy(cmbCFCard_);
  chkNonADFS_->setObjectName(QStringLiteral("chkNonADFS"));
  setAcceptDrops(true);
  setToolTip(QStringLiteral("A file that holds a raw card can be dropped here"));
  connect(chkNonADFS_, &QCheckBox::toggled, this, [this] { chkNonADFS_Click(); });
}

void frmCardChoice::Load() {
  ScanCFCards();
  RestorePlace(*this, kCFPlace);
}

frmCardChoice::~frmCardChoice() {
  SavePlace(*this, kCFPlace);
}

void frmCardChoice::ScanCFCards() {
  const QString chosen = cmbCFCard_->currentText();
  cmbCFCard_->setEnabled(false);
  cmbCFCard_->clear();
  ReadCardFiles(drives_);
  const CardScan scan = sectorbox::ScanCFCards(disc_, drives_, includeNonADFS_);
  for (const std::string& row : scan.Rows) cmbCFCard_->addItem(FromBbc(row));
  // No row is chosen for the user, apart from the one that the user has chosen before. Ok on a row
  // that merely happens to be the first could destroy a card.
  cmbCFCard_->setCurrentIndex(
      chosen.isEmpty() ? -1
                       : cmbCFCard_->findText(chosen, Qt::MatchExactly | Qt::MatchCaseSensitive));
  if (scan.Rows.empty()) return;
  cmbCFCard_->setEnabled(true);
  lblCFCard_->setText(FromBbc(kSelectCardText));
}

void frmCardChoice::chkNonADFS_Click() {
  includeNonADFS_ = chkNonADFS_->isChecked();
  ScanCFCards();
}

bool frmCardChoice::HasChoice() {
  if (!cmbCFCard_->isEnabled() || cmbCFCard_->currentIndex() >= 0) return true;
  cmbCFCard_->setFocus();
  return false;
}

bool frmCardChoice::TakeChoice() {
  disc_.ProgressRunning = cmbCFCard_->isEnabled();
  if (disc_.ProgressRunning) disc_.ImageName = ImageNameOfRow(ToBbc(cmbCFCard_->currentText()));
  return disc_.ProgressRunning;
}

void frmCardChoice::DisableChoice() {
  for (QWidget* control : {static_cast<QWidget*>(cmbCFCard_), static_cast<QWidget*>(chkNonADFS_)}) {
    control->setEnabled(false);
  }
  setAcceptDrops(false);
}

void frmCardChoice::dragEnterEvent(QDragEnterEvent* event) {
  if (!PathsOf(*event->mimeData()).empty()) event->acceptProposedAction();
}

void frmCardChoice::dropEvent(QDropEvent* event) {
  // While a format runs it uses the store, and a scan would take the store away from it.
  if (!acceptDrops()) return;
  event->acceptProposedAction();
  bool isAnyNew = false;
  std::string refused;
  for (const std::string& path : PathsOf(*event->mimeData())) {
    const CardFileTaken taken = AddCardFile(path);
    isAnyNew |= taken == CardFileTaken::kAdded;
    if (taken == CardFileTaken::kNoPlainFile && refused.empty()) refused = path;
  }
  // If no file is new, there is no scan, and the chosen row stays chosen.
  if (isAnyNew) ScanCFCards();
  if (!refused.empty()) disc_.Host.Note(refused + ": not a file that could hold a card");
}

}  // namespace sectorbox
