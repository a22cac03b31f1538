#pragma once

#include <QTimer>
#include <QWidget>
#include <array>
#include <memory>

#include "disc/store/Disc.h"
#include "viewers/picture/ScreenMode.h"
#include "viewers/windows/frmPalette.h"
#include "viewers/windows/frmPicture.h"

namespace sectorbox {

// A file as a screen, with buttons for the five modes and for the palette. Not modal: every drawing
// shows what is current in the list at that moment, so after another row was clicked a tick of the
// flashing or a change of the palette shows that row's file.
class frmMode : public QWidget {
  Q_OBJECT

 public:
  // disc and what row gives outlive the window.
  frmMode(Disc& disc, CurrentRow row);

  // Clears the picture and draws by Tag: 0, 1, 2, 4 or 5; any other leaves it black. Only MODE 2
  // flashes. Closes the window if there is no current row.
  void Show_File();

  int Tag = 0;
  bool FlashOn = false;  // MODE 2's flashing colours show their second colour
  std::string DefaultName;
  std::function<void(QPrinter&)> SetUpPrinter;  // may change the default printer's settings

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  QLayout* MakeControls();
  void MakeMenus(QLayout& layout);
  void Render();
  void SetPaletteButtons(const ScreenMode& mode, const CurrentColours& colours);
  void cmdPalet_Click(int index);
  void cmdReset_Click();
  void Timer1_Timer();

  Disc& disc_;
  CurrentRow row_;
  ScreenPalette palette_;
  PictureBox* Picture1_;
  std::array<ColourButton*, 8> cmdPalet_{};
  QTimer Timer1_;
  std::unique_ptr<PictureMenu> menu_;
};

}  // namespace sectorbox
