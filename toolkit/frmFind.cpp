#include "toolkit/frmFind.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace sectorbox {

frmFind::frmFind(QWidget* parent, TextSearch& search)
    : QDialog(parent), search_(search), txtFind_(new QLineEdit(search.FindText, this)) {
  setObjectName(QStringLiteral("frmFind"));
  setWindowTitle(QStringLiteral("Find"));
  search_.FindOK = false;
  txtFind_->setObjectName(QStringLiteral("txtFind"));
  txtFind_->setMinimumWidth(260);
  txtFind_->setPlaceholderText(QStringLiteral("In capitals or not"));
  txtFind_->selectAll();
  auto* lblFind = new QLabel(QStringLiteral("Find :"), this);
  lblFind->setObjectName(QStringLiteral("lblFind"));
  lblFind->setBuddy(txtFind_);
  auto* box = new QDialogButtonBox(this);
  QPushButton* cmdOK = box->addButton(QStringLiteral("OK"), QDialogButtonBox::AcceptRole);
  cmdOK->setObjectName(QStringLiteral("cmdOK"));
  cmdOK->setDefault(true);
  QPushButton* cmdCancel = box->addButton(QStringLiteral("Cancel"), QDialogButtonBox::RejectRole);
  cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
  connect(cmdOK, &QPushButton::clicked, this, [this] { cmdOK_Click(); });
  connect(cmdCancel, &QPushButton::clicked, this, [this] { reject(); });
  auto* row = new QHBoxLayout;
  row->addWidget(lblFind);
  row->addWidget(txtFind_);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(row);
  layout->addSpacing(6);
  layout->addWidget(box);
  layout->setSizeConstraint(QLayout::SetFixedSize);
  txtFind_->setFocus();
}

void frmFind::cmdOK_Click() {
  search_.FindText = txtFind_->text();
  search_.FindOK = true;
  accept();
}

}  // namespace sectorbox
