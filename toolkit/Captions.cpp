#include "toolkit/Captions.h"

#include <QDialog>
#include <QFontMetrics>
#include <QGridLayout>
#include <QStyle>

namespace sectorbox {
namespace {

// An icon, three buttons and the gaps between them, each about as wide as the bar is high. How a
// bar really looks is up to the window manager, and no call gives it.
constexpr int kTitleBarPieces = 5;

}  // namespace

int CaptionWidth(const QWidget& window) {
  QFont font = window.font();
  font.setBold(true);
  return QFontMetrics(font).horizontalAdvance(window.windowTitle()) +
         kTitleBarPieces * window.style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, &window);
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

}  // namespace sectorbox
