#pragma once

#include <QString>

class QDialog;
class QWidget;

// Room for captions. A window manager cuts a caption that is wider than the window. A dialog with a
// few short words in it is narrower than its caption.
namespace sectorbox {

// The width in pixels at which a title bar shows the window's whole caption, with the icon and
// buttons around it.
[[nodiscard]] int CaptionWidth(const QWidget& window);

// Makes the dialog, or message box, at least as wide as its caption needs. Call it when caption and
// layout are complete.
void MakeRoomForCaption(QDialog& dialog);

// The width of a small window whose longest line is that text, in the window's own font: 320
// pixels, and more if the text needs more. Call it when the layout is complete.
[[nodiscard]] int WidthForText(const QWidget& window, const QString& longest);

// The text as a part of a menu entry's caption, in which a single & would mark a key.
[[nodiscard]] QString CaptionOf(const QString& text);

}  // namespace sectorbox
