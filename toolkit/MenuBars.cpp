#include "toolkit/MenuBars.h"

#include <QEvent>
#include <QMenuBar>
#include <QPainter>
#include <QPixmap>
#include <QToolButton>

namespace sectorbox {
namespace {

constexpr int kArrowSide = 32;  // scaled down to the button

QIcon DoubleArrow(const QColor& colour) {
  QPixmap picture(kArrowSide, kArrowSide);
  picture.fill(Qt::transparent);
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(colour, 4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  for (const int left : {5, 17}) {
    const QPolygon arrow({{left, 6}, {left + 10, kArrowSide / 2}, {left, kArrowSide - 6}});
    painter.drawPolyline(arrow);
  }
  return picture;
}

// Paints the arrow anew when the palette changes.
class ArrowPainter : public QObject {
 public:
  explicit ArrowPainter(QToolButton& button) : QObject(&button), button_(button) {
    button.installEventFilter(this);
    Paint();
  }

 protected:
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange) Paint();
    return false;
  }

 private:
  void Paint() { button_.setIcon(DoubleArrow(button_.palette().color(QPalette::ButtonText))); }

  QToolButton& button_;
};

}  // namespace

void ShowOverflowArrow(QMenuBar& bar) {
  auto* button = bar.findChild<QToolButton*>(QStringLiteral("qt_menubar_ext_button"));
  if (button != nullptr) new ArrowPainter(*button);
}

}  // namespace sectorbox
