#pragma once

#include <QDialogButtonBox>
#include <QPushButton>

namespace sectorbox {

// The buttons that every small dialog ends with: cmdOK, which is the default, and cmdCancel, which
// is what Escape presses.
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
