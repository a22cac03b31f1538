#include "viewers/windows/frmPalette.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QStyleOptionFocusRect>
#include <QStylePainter>
#include <QVBoxLayout>

#include "viewers/picture/Colours.h"

namespace sectorbox {
namespace {

constexpr int kPatchSize = 28;

}  // namespace

ColourButton::ColourButton(QWidget* parent, const QString& name) : QPushButton(parent) {
  setObjectName(name);
  setFixedSize(kPatchSize, kPatchSize);
}

void ColourButton::SetBackColour(Colour colour) {
  back_ = static_cast<std::int32_t>(colour);
  update();
}

void ColourButton::ClearBackColour() {
  back_ = -1;
  update();
}

void ColourButton::SetSpokenName(const QString& name) {
  setToolTip(name);
  setAccessibleName(name);
}

void ColourButton::paintEvent(QPaintEvent* event) {
  if (back_ < 0) {
    QPushButton::paintEvent(event);
    return;
  }
  QStylePainter painter(this);
  painter.fillRect(rect(), palette().color(isDown() ? QPalette::Dark : QPalette::Mid));
  painter.fillRect(rect().adjusted(1, 1, -1, -1), palette().color(QPalette::Light));
  painter.fillRect(rect().adjusted(2, 2, -2, -2), QColor::fromRgb(static_cast<QRgb>(back_)));
  if (!hasFocus()) return;
  // This frame shows on every colour: it is a light line under a dotted dark one.
  painter.setPen(Qt::white);
  painter.drawRect(rect().adjusted(3, 3, -4, -4));
  painter.setPen(QPen(Qt::black, 1, Qt::DotLine));
  painter.drawRect(rect().adjusted(3, 3, -4, -4));
}

frmPalette::frmPalette(QWidget* parent) : QDialog(parent) {
  setObjectName(QStringLiteral("frmPalette"));
  setWindowTitle(QStringLiteral("Change Palette"));
  auto* layout = new QVBoxLayout(this);
  auto* label = new QLabel(QStringLiteral("Select New Colour"), this);
  label->setObjectName(QStringLiteral("lblRX"));
  layout->addWidget(label);
  auto* patches = new QHBoxLayout;
  for (std::size_t i = 0; i < kPhysicalColours.size(); ++i) {
    auto* patch = new ColourButton(this, QStringLiteral("cmdColour%1").arg(i));
    patch->SetBackColour(kPhysicalColours[i]);
    patch->SetSpokenName(QString::fromLatin1(kColourNames[i]));
    connect(patch, &QPushButton::clicked, this, [this, colour = kPhysicalColours[i]] {
      SelectedColour = colour;
      accept();
    });
    patches->addWidget(patch);
  }
  layout->addLayout(patches);
  auto* cancel = new QPushButton(QStringLiteral("Cancel"), this);
  cancel->setObjectName(QStringLiteral("cmdCancel"));
  connect(cancel, &QPushButton::clicked, this, [this] { reject(); });
  layout->addWidget(cancel, 0, Qt::AlignRight);
  layout->setSizeConstraint(QLayout::SetFixedSize);
}

}  // namespace sectorbox
