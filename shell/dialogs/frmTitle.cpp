#include "shell/dialogs/frmTitle.h"

#include <QVBoxLayout>

#include "shell/dialogs/DialogButtons.h"
#include "toolkit/Captions.h"
#include "toolkit/Text.h"

namespace sectorbox {

frmTitle::frmTitle(QWidget* parent, const std::string& title)
    : QDialog(parent), txtTitle_(new QLineEdit(this)) {
  setObjectName(QStringLiteral("frmTitle"));
  setWindowTitle(QStringLiteral("Set Directory Title"));
  txtTitle_->setObjectName(QStringLiteral("txtTitle"));
  txtTitle_->setAccessibleName(QStringLiteral("Directory title"));
  txtTitle_->setPlaceholderText(QStringLiteral("Up to 19 characters"));
  txtTitle_->setText(FromBbc(title));
  txtTitle_->selectAll();
  txtTitle_->setFocus();
  txtTitle_->setMinimumWidth(240);
  const OKCancel buttons(this);
  connect(buttons.OK, &QPushButton::clicked, this, [this] { accept(); });
  connect(buttons.Cancel, &QPushButton::clicked, this, [this] { reject(); });
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(txtTitle_);
  layout->addSpacing(6);
  layout->addWidget(buttons.Box);
  layout->setSizeConstraint(QLayout::SetFixedSize);
  MakeRoomForCaption(*this);
}

std::string frmTitle::Title() const {
  return TypedToBbc(txtTitle_->text());
}

}  // namespace sectorbox
