#include "shell/panes/PaneFocus.h"

#include <QApplication>

namespace sectorbox {
namespace {

// Between the pane's background and its text, nearer to the background.
QColor MutedHighlight(const QPalette& palette) {
  const QColor base = palette.color(QPalette::Inactive, QPalette::Base);
  const QColor text = palette.color(QPalette::Inactive, QPalette::Text);
  const auto mix = [](int a, int b) { return (3 * a + b) / 4; };
  return {mix(base.red(), text.red()), mix(base.green(), text.green()),
          mix(base.blue(), text.blue())};
}

}  // namespace

bool HoldsFocus(const QAbstractItemView& pane) {
  const QWidget* focus = pane.window()->focusWidget();
  return focus == &pane || (focus != nullptr && pane.isAncestorOf(focus));
}

void PaintByFocus(const QAbstractItemView& pane, QStyleOptionViewItem& option) {
  QPalette& palette = option.palette;
  if (palette.color(QPalette::Inactive, QPalette::Highlight) ==
      palette.color(QPalette::Active, QPalette::Highlight)) {
    palette.setColor(QPalette::Inactive, QPalette::Highlight, MutedHighlight(palette));
    palette.setColor(QPalette::Inactive, QPalette::HighlightedText,
                     palette.color(QPalette::Inactive, QPalette::Text));
  }
  if (!HoldsFocus(pane)) option.state &= ~QStyle::State_Active;
}

void PaintFocusFrame(QPainter& painter, const QRect& row, const QPalette& palette, bool selected) {
  const QPalette::ColorRole role = selected ? QPalette::HighlightedText : QPalette::Text;
  painter.save();
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(palette.color(QPalette::Active, role), 1, Qt::DotLine));
  painter.drawRect(row.adjusted(0, 0, -1, -1));
  painter.restore();
}

}  // namespace sectorbox
