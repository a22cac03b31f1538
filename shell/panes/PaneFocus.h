#pragma once

#include <QAbstractItemView>
#include <QPainter>
#include <QStyleOptionViewItem>

// How a pane shows whether the keys go to it.
namespace sectorbox {

// True if the pane or the editor of a name in it has the focus.
[[nodiscard]] bool HoldsFocus(const QAbstractItemView& pane);

// Makes the selection of a pane without the focus appear in the palette's inactive colours. If the
// palette has the same colours for both, a muted colour takes their place.
void PaintByFocus(const QAbstractItemView& pane, QStyleOptionViewItem& option);

// A dotted frame around the current row.
void PaintFocusFrame(QPainter& painter, const QRect& row, const QPalette& palette, bool selected);

}  // namespace sectorbox
