#pragma once

#include <QString>
#include <QWidget>
#include <string>

#include "disc/catalogue/Catalogue.h"
#include "disc/store/Disc.h"
#include "viewers/picture/Picture.h"

class QLayout;
class QMenu;
class QMenuBar;
class QPrinter;

// What the windows that show pictures share.
namespace sectorbox {

// Teletext's flashing characters and MODE 2's flashing colours change twice a second.
inline constexpr int kFlashMilliseconds = 500;
// Picture1 stands this many pixels from the window's left edge and from its menu.
inline constexpr int kPictureMargin = 10;

// Where a picture window learns which row of the list is current. The window asks at each drawing.
class CurrentRow {
 public:
  // Null when no row is current.
  virtual const ListRow* CurrentItem() const = 0;

 protected:
  CurrentRow() = default;
  ~CurrentRow() = default;
  CurrentRow(const CurrentRow&) = default;
  CurrentRow& operator=(const CurrentRow&) = default;
};

// Picture1: a sunken box around a picture, two pixels wider on each side than the picture itself.
// Each pixel of the picture is a square of whole pixels of the screen, so it stays crisp at every
// scale: at 200 % a square of two by two. If the scale isn't a whole number, the squares are as
// large as the box allows, and the picture stands in the middle of the box.
class PictureBox : public QWidget {
  Q_OBJECT

 public:
  explicit PictureBox(QWidget* parent);
  // Shows the picture and makes the box as large as the picture and its border.
  void Show(Picture picture);
  // The height of the box around that many rows of pixels.
  static int HeightFor(int rows);
  const Picture& Shown() const { return picture_; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  Picture picture_;
};

// The menu bar of a picture window with its File menu, and what the entries do.
//
// mnuFileSave asks for a file name, offering defaultName with ".bmp", and writes the picture there
// as a Windows bitmap; a cancelled dialog does nothing. mnuFilePrint prints the picture on the
// system's default printer, and tells the user when there is none. mnuFileClose closes the window.
class PictureMenu : public QObject {
  Q_OBJECT

 public:
  // Puts the menu bar into the window's layout. The menu is a child of window. box and defaultName
  // belong to the window too: the entries use what they hold when the user chooses one.
  // disc is the one that the picture comes from; it outlives the window.
  PictureMenu(QWidget& window, QLayout& layout, const Disc& disc, const PictureBox& box,
              const std::string& defaultName);
  QMenu* Bar(const QString& name, const QString& caption) const;

 Q_SIGNALS:
  // The picture is about to go to this printer. A slot may change the printer's settings.
  void AboutToPrint(QPrinter& printer);

 private:
  void mnuFileSave_Click();
  void mnuFilePrint_Click();

  QWidget& window_;
  const Disc& disc_;
  const PictureBox& box_;
  const std::string& defaultName_;
  QMenuBar* bar_;
};

// Draws the picture at the page's top left corner, at 96 pixels to the inch. False if the printer
// couldn't be opened.
[[nodiscard]] bool PrintPicture(const Picture& picture, QPrinter& printer);

}  // namespace sectorbox
