#pragma once

#include <QDialog>
#include <QTimer>
#include <string>

#include "disc/store/Disc.h"
#include "viewers/picture/TeletextFont.h"
#include "viewers/windows/frmPicture.h"

namespace sectorbox {

// A file as a teletext page, flashing twice a second. The dialog is modal (exec), so nothing
// changes the disc while its timer draws.
class frmTeletext : public QDialog {
  Q_OBJECT

 public:
  // disc and row outlive the window.
  frmTeletext(QWidget* parent, Disc& disc, const CurrentRow& row, const TeletextFont& font);

  // Draws the page of the current row if the Tag is 0; closes the window if there is no row.
  void Show_File();
  // Closes the window and keeps its place.
  void done(int result) override;

  int Tag = 0;
  std::int16_t FlashPhase = 0;
  std::string DefaultName;  // offered by the save dialog, without extension

 private:
  void Timer1_Timer();

  Disc& disc_;
  const CurrentRow& row_;
  TeletextFont font_;
  PictureBox* Picture1_;
  QTimer Timer1_;
};

}  // namespace sectorbox
