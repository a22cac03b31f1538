#pragma once

#include <QDialog>
#include <string>

#include "link/wire/Link.h"
#include "toolkit/TextWindow.h"

class QLineEdit;
class QMenuBar;

namespace sectorbox {

// The BBC's prompt: Enter sends a command, and what the BBC prints stays here until the window
// closes. The window doesn't connect: the server must be listening at the speed that stands. link
// and search, which all text windows of the program share, outlive the window.
class frmCLI : public QDialog, public TextWindow {
 public:
  frmCLI(Link& link, TextSearch& search, QWidget* parent);
  ~frmCLI() override;

 protected:
  void resizeEvent(QResizeEvent* event) override;
  // Escape, which at a BBC ends whatever runs, doesn't close the window and lose its output.
  void keyPressEvent(QKeyEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void RunCommand();
  void Insert(const std::string& text);
  std::string SaveName() const override { return "oscli.txt"; }
  void mnuEditCopy_Click() override;

  Link& link_;
  QLineEdit* txtCmd_;
  QMenuBar* menuBar_;
};

}  // namespace sectorbox
