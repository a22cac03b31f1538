#pragma once

#include <QDialog>
#include <QPushButton>
#include <cstdint>

#include "viewers/picture/Picture.h"

namespace sectorbox {

// What frmPalette's last use chose, as a Colour; -1 for none.
inline std::int32_t SelectedColour = -1;

// A button that is a patch of its colour. Without a colour it looks like any disabled button.
class ColourButton : public QPushButton {
  Q_OBJECT

 public:
  ColourButton(QWidget* parent, const QString& name);
  void SetBackColour(Colour colour);
  void ClearBackColour();  // the system's button colour
  // What the patch is called, for the pointer that rests on it and for those who can't see it.
  void SetSpokenName(const QString& name);
  // -1 without a colour of its own.
  std::int32_t BackColour() const { return back_; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  std::int32_t back_ = -1;
};

// Offers the eight physical colours; gives its answer in SelectedColour.
class frmPalette : public QDialog {
  Q_OBJECT

 public:
  explicit frmPalette(QWidget* parent);
};

}  // namespace sectorbox
