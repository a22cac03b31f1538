#pragma once

#include <QDialogButtonBox>
#include <QPushButton>

namespace sectorbox {

// The buttons at the end of every small dialog: cmdOK, which is the default, and cmdCancel, which
// Escape presses.
struct OKCancel {
  explicit OKCancel(QWidget* parent)
      : Box(new QDialogButtonBox(parent)),
        OK(Box->addButton(QStringLiteral("OK"), QDialogButtonBox::AcceptRole)),
        Cancel(Box->addButton(QStringLiteral("Cancel"), QDialogButtonBox::RejectRole)) {
    OK->setObjectName(QStringLiteral("cmdOK"));
    OK->setDefault(true);
    Cancel->setObjectName(QStringLiteral("cmdCancel"));
    Cancel->setShortcut(Qt::Key_Escape);
  }

  QDialogButtonBox* Box;
  QPushButton* OK;
  QPushButton* Cancel;
};

}  // namespace sectorbox
