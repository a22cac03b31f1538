#pragma once

#include <QDialog>
#include <QLineEdit>
#include <string>

namespace sectorbox {

// "Set Directory Title" of one directory. The user may type any text; the disc keeps as much of it
// as it can hold.
class frmTitle : public QDialog {
 public:
  // title is the directory's title as it stands, in the BBC's bytes.
  frmTitle(QWidget* parent, const std::string& title);

  // What the user has typed, in the BBC's bytes.
  [[nodiscard]] std::string Title() const;

 private:
  QLineEdit* txtTitle_;
};

}  // namespace sectorbox
