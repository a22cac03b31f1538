#pragma once

#include <QDialog>

namespace sectorbox {

// The version of the program as its windows show it: "Version 1.0.0".
[[nodiscard]] QString VersionLine();

// The about box.
class frmAbout : public QDialog {
 public:
  explicit frmAbout(QWidget* parent);
};

}  // namespace sectorbox
