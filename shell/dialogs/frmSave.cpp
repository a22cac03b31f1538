#include "shell/dialogs/frmSave.h"

#include <QCloseEvent>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include "toolkit/Captions.h"
#include "toolkit/WindowPlace.h"

namespace sectorbox {

frmSave::frmSave(QWidget* parent, Disc& disc)
    : QDialog(parent),
      disc_(disc),
      lblSave_(new QLabel(QStringLiteral("Saving Sectors 0 to 15"), this)),
      bar_(new QProgressBar(this)) {
  setObjectName(QStringLiteral("frmSave"));
  setWindowTitle(QStringLiteral("Save Image"));
  setModal(true);
  auto* wait = new QLabel(QStringLiteral("Please Wait !"), this);
  auto* cmdAbort = new QPushButton(QStringLiteral("Abort"), this);
  cmdAbort->setObjectName(QStringLiteral("cmdAbort"));
  lblSave_->setObjectName(QStringLiteral("lblSave"));
  lblSave_->setTextFormat(Qt::PlainText);
  bar_->setAccessibleName(QStringLiteral("Progress"));
  bar_->setRange(0, 100);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(wait);
  layout->addWidget(bar_);
  layout->addWidget(lblSave_);
  layout->addWidget(cmdAbort, 0, Qt::AlignHCenter);
  setFixedWidth(WidthForText(*this, QStringLiteral("Restoring Sectors 2097136 to 2097151")));
  RestorePlace(*this, kSavePlace);
  disc_.ProgressRunning = true;
  connect(cmdAbort, &QPushButton::clicked, this, [this] { disc_.ProgressRunning = false; });
}

frmSave::~frmSave() {
  SavePlace(*this, kSavePlace);
}

void frmSave::Show(const QString& line, double percent) {
  lblSave_->setText(line);
  bar_->setValue(static_cast<int>(percent));
  repaint();
}

void frmSave::reject() {
  disc_.ProgressRunning = false;
}

void frmSave::closeEvent(QCloseEvent* event) {
  event->ignore();
  disc_.ProgressRunning = false;
}

}  // namespace sectorbox
