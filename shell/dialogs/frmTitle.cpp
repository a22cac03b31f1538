#include "shell/dialogs/frmTitle.h"

#include <QVBoxLayout>

#include "disc/catalogue/Adfs.h"
#include "disc/change/Mutation.h"
#include "shell/dialogs/DialogButtons.h"
#include "shell/program/frmMain.h"
#include "toolkit/Captions.h"
#include "toolkit/Text.h"

namespace sectorbox {

frmTitle::frmTitle(QWidget* parent, Disc& disc, std::int32_t DirSector)
    : QDialog(parent), disc_(disc), sector_(DirSector), txtTitle_(new QLineEdit(this)) {
  setObjectName(QStringLiteral("frmTitle"));
  setWindowTitle(QStringLiteral("Set Directory Title"));
  txtTitle_->setObjectName(QStringLiteral("txtTitle"));
  txtTitle_->setText(FromBbc(GetDirTitle(disc_, sector_)));
  txtTitle_->selectAll();
  txtTitle_->setFocus();
  txtTitle_->setMinimumWidth(240);
  const OKCancel buttons(this);
  connect(buttons.OK, &QPushButton::clicked, this,
          [this] { frmMain::MainWindow->Guarded([this] { cmdOK_Click(); }); });
  connect(buttons.Cancel, &QPushButton::clicked, this, [this] { reject(); });
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(txtTitle_);
  layout->addSpacing(6);
  layout->addWidget(buttons.Box);
  layout->setSizeConstraint(QLayout::SetFixedSize);
  MakeRoomForCaption(*this);
}

void frmTitle::cmdOK_Click() {
  (void)SetDirTitle(disc_, sector_, TypedToBbc(txtTitle_->text()));
  accept();
}

}  // namespace sectorbox
