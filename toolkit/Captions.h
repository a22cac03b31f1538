#pragma once

#include <QString>

class QDialog;
class QWidget;

// Room for captions. A window manager cuts a caption that is wider than the window, and a dialog of
// a few short words is narrower than what it is called.
namespace sectorbox {

// The width in pixels at which a title bar shows the window's whole caption, with the icon and
// buttons around it.
int CaptionWidth(const QWidget& window);

// Makes the laid-out dialog, or message box, at least as wide as its caption needs. To be called
// when caption and layout are complete.
void MakeRoomForCaption(QDialog& dialog);

}  // namespace sectorbox
