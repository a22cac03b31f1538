#include "toolkit/Captions.h"

#include <QDialog>
#include <QFontMetrics>
#include <QGridLayout>
#include <QStyle>

namespace sectorbox {
namespace {

// An icon, three buttons and the gaps between them, each about as wide as the bar is high. How a
// bar really looks is the window manager's affair and can't be asked.
constexpr int kTitleBarPieces = 5;

}  // namespace

int CaptionWidth(const QWidget& window) {
  QFont font = window.font();
  font.setBold(true);
  return QFontMetrics(font).horizontalAdvance(window.windowTitle()) +
         kTitleBarPieces * window.style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, &window);
}

// The width is held by the layout: the dialogs' sizes are fixed to what their layouts ask for,
// which overrules a minimum size of the window.
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
