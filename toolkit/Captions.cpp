#include "toolkit/Captions.h"

#include <QDialog>
#include <QFontMetrics>
#include <QGridLayout>
#include <QStyle>
#include <algorithm>

namespace sectorbox {
namespace {

// An icon, three buttons and the gaps between them, each about as wide as the bar is high. How a
// bar really looks is up to the window manager, and no call gives it.
constexpr int kTitleBarPieces = 5;
constexpr int kSmallWindow = 320;
constexpr int kSlack = 12;  // what a style's margins may differ once the window is shown

}  // namespace

int CaptionWidth(const QWidget& window) {
  QFont font = window.font();
  font.setBold(true);
  return QFontMetrics(font).horizontalAdvance(window.windowTitle()) +
         kTitleBarPieces * window.style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, &window);
}

int WidthForText(const QWidget& window, const QString& longest) {
  const QMargins margins = window.layout()->contentsMargins();
  return std::max(kSmallWindow, window.fontMetrics().horizontalAdvance(longest) + margins.left() +
                                    margins.right() + kSlack);
}

// An item in the layout holds the width: the dialogs are exactly as large as their layouts ask for,
// and that overrules a minimum size of the window.
void MakeRoomForCaption(QDialog& dialog) {
  const QMargins margins = dialog.layout()->contentsMargins();
  const int width = CaptionWidth(dialog) - margins.left() - margins.right();
  if (auto* box = qobject_cast<QBoxLayout*>(dialog.layout())) box->addStrut(width);
  if (auto* grid = qobject_cast<QGridLayout*>(dialog.layout())) {
    grid->addItem(new QSpacerItem(width, 0, QSizePolicy::Minimum, QSizePolicy::Fixed),
                  grid->rowCount(), 0, 1, grid->columnCount());
  }
}

QString CaptionOf(const QString& text) {
  return QString(text).replace(QLatin1Char('&'), QStringLiteral("&&"));
}

}  // namespace sectorbox
