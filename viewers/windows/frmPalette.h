#pragma once

#include <QDialog>
#include <QPushButton>
#include <cstdint>
#include <optional>

#include "viewers/picture/Picture.h"

namespace sectorbox {

// A button that shows one colour. Without a colour it looks like any other button.
class ColourButton : public QPushButton {
  Q_OBJECT

 public:
  ColourButton(QWidget* parent, const QString& name);
  void SetBackColour(Colour colour);
  void ClearBackColour();  // the system's button colour
  // The patch's name, for a tool tip and for a screen reader.
  void SetSpokenName(const QString& name);
  // -1 if the button shows no colour.
  std::int32_t BackColour() const { return back_; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  std::int32_t back_ = -1;
};

// Offers the eight physical colours.
class frmPalette : public QDialog {
  Q_OBJECT

 public:
  explicit frmPalette(QWidget* parent);

  // The colour that the user has chosen. None while the dialog waits, and after Cancel.
  std::optional<Colour> SelectedColour;
};

}  // namespace sectorbox
