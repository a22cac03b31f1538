#pragma once

#include <QString>
#include <QWidget>
#include <functional>
#include <string>

#include "disc/catalogue/Catalogue.h"
#include "viewers/picture/Picture.h"

class QLayout;
class QMenu;
class QMenuBar;
class QPrinter;

// What the windows that show pictures share.
namespace sectorbox {

// Teletext's flashing characters and MODE 2's flashing colours change twice a second.
inline constexpr int kFlashMilliseconds = 500;
// Picture1 stands as many pixels from the window's left edge and from its menu.
inline constexpr int kPictureMargin = 10;

// The row of the list that is current now; null when there is none. Asked at each drawing.
using CurrentRow = std::function<const ListRow*()>;

// Picture1: a sunken box around a picture, two pixels wider on each side than the picture itself.
// Each pixel of the picture is a square of whole pixels of the screen, so it stays crisp at every
// scale: at 200 % a square of two by two. At a scale between whole numbers the squares are as large
// as fit, and the picture stands in the middle of the box.
class PictureBox : public QWidget {
  Q_OBJECT

 public:
  explicit PictureBox(QWidget* parent);
  // Makes the box as large as the picture and its border want it.
  void Show(Picture picture);
  // The height of the box around that many rows of pixels.
  static int HeightFor(int rows);
  const Picture& Shown() const { return picture_; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  Picture picture_;
};

// The File menu of a picture window: mnuFileSave, mnuFilePrint, mnuFileClose.
struct PictureMenu {
  // Puts the menu bar with mnuFile into the window's layout.
  PictureMenu(QWidget& window, QLayout& layout);
  QMenu* Bar(const QString& name, const QString& caption) const;

  std::function<void()> Save;
  std::function<void()> Print;

 private:
  QMenuBar* bar_;
};

// Asks for a file name, offering DefaultName with ".bmp", and writes the picture there as a Windows
// bitmap. A cancelled dialog does nothing.
void SavePictureAs(QWidget& window, const Picture& picture, const std::string& DefaultName);
// Draws the picture at the page's top left corner, at 96 pixels to the inch. False if the printer
// couldn't be opened.
bool PrintPicture(const Picture& picture, QPrinter& printer);
// The same on the default printer; tells the user when there is none. setUp, unless empty, may
// change the printer first.
void PrintPictureOnDefault(QWidget& window, const Picture& picture,
                           const std::function<void(QPrinter&)>& setUp);

}  // namespace sectorbox
