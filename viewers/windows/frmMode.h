#pragma once

#include <QTimer>
#include <QWidget>
#include <array>
#include <string>

#include "disc/store/Disc.h"
#include "viewers/picture/ScreenMode.h"
#include "viewers/windows/frmPalette.h"
#include "viewers/windows/frmPicture.h"

namespace sectorbox {

// A file as a screen, with buttons for the five modes and for the palette. The window isn't modal.
// Every drawing shows the row that is current in the list at that moment: after a click on another
// row a tick of the flashing or a change of the palette shows that row's file.
class frmMode : public QWidget {
  Q_OBJECT

 public:
  // disc and row outlive the window.
  frmMode(Disc& disc, const CurrentRow& row);

  // Clears the picture and draws by Tag: 0, 1, 2, 4 or 5; any other leaves it black. Only MODE 2
  // flashes. Closes the window if there is no current row.
  void Show_File();

  int Tag = 0;
  bool FlashOn = false;     // MODE 2's flashing colours show their second colour
  std::string DefaultName;  // offered by the save dialog, without extension

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  QLayout* MakeControls();
  QWidget* MakePaletteFrame();
  QLayout* MakeModeButtons();
  void MakeMenus(QLayout& layout);
  void Render();
  void SetPaletteButtons(const ScreenMode& mode, const CurrentColours& colours);
  void cmdPalet_Click(int index);
  void cmdReset_Click();
  void Timer1_Timer();

  Disc& disc_;
  const CurrentRow& row_;
  ScreenPalette palette_;
  PictureBox* Picture1_;
  std::array<ColourButton*, 8> cmdPalet_{};
  QTimer Timer1_;
};

}  // namespace sectorbox
