#include "shell/dialogs/frmAbout.h"

#include <QGridLayout>
#include <QIcon>
#include <QLabel>
#include <QPushButton>

#include "shell/icons/Icons.h"

namespace sectorbox {

QString VersionLine() {
  return QStringLiteral("Version " SECTORBOX_VERSION);
}

frmAbout::frmAbout(QWidget* parent) : QDialog(parent) {
  setObjectName(QStringLiteral("frmAbout"));
  setWindowTitle(QStringLiteral("About Sectorbox"));
  auto* picture = new QLabel(this);
  picture->setPixmap(LoadIcon("sectorbox").pixmap(QSize(64, 64)));
  auto* title = new QLabel(QStringLiteral("Sectorbox"), this);
  title->setObjectName(QStringLiteral("lblTitle"));
  QFont large = title->font();
  large.setPointSizeF(large.pointSizeF() * 1.7);
  large.setBold(true);
  title->setFont(large);
  auto* lblVersion = new QLabel(VersionLine(), this);
  lblVersion->setObjectName(QStringLiteral("lblVersion"));
  auto* about = new QLabel(QStringLiteral("ADFS discs of the BBC Micro on today's desktop:\n"
                                          "image files, compact-flash cards and the serial line."),
                           this);
  about->setObjectName(QStringLiteral("lblDescription"));
  auto* cmdOK = new QPushButton(QStringLiteral("OK"), this);
  cmdOK->setObjectName(QStringLiteral("cmdOK"));
  cmdOK->setDefault(true);
  connect(cmdOK, &QPushButton::clicked, this, [this] { accept(); });
  auto* layout = new QGridLayout(this);
  layout->setContentsMargins(18, 18, 18, 12);
  layout->setHorizontalSpacing(18);
  layout->addWidget(picture, 0, 0, 3, 1, Qt::AlignTop);
  layout->addWidget(title, 0, 1);
  layout->addWidget(lblVersion, 1, 1);
  layout->addWidget(about, 2, 1);
  layout->setRowMinimumHeight(3, 12);
  layout->addWidget(cmdOK, 4, 1, Qt::AlignRight);
  layout->setSizeConstraint(QLayout::SetFixedSize);
}

}  // namespace sectorbox
