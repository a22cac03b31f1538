#pragma once

#include <QDialog>
#include <string>

#include "link/wire/Link.h"
#include "toolkit/TextWindow.h"

class QLabel;
class QLineEdit;
class QMenuBar;

namespace sectorbox {

struct Disc;

// The BBC's prompt: Enter sends a command, and what the BBC prints stays here until the window
// closes. The window doesn't connect: the server must be listening at the port's present speed.
// link, disc and search outlive the window. All text windows of the program share search. What the
// user saves never replaces the open disc.
class frmCLI : public QDialog, public TextWindow {
 public:
  frmCLI(Link& link, const Disc& disc, TextSearch& search, QWidget* parent);
  ~frmCLI() override;

 protected:
  void resizeEvent(QResizeEvent* event) override;
  // Escape doesn't close the window. At a BBC, Escape ends the running program, so users may press
  // it here out of habit, and they would lose the output.
  void keyPressEvent(QKeyEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void RunCommand();
  void ShowWaiting(bool waiting);
  void Insert(const std::string& text);
  std::string SaveName() const override { return "oscli.txt"; }
  void CheckSavePath(const std::string& path) const override;
  void mnuEditCopy_Click() override;

  Link& link_;
  const Disc& disc_;
  QLineEdit* txtCmd_;
  QLabel* lblWaiting_;  // at the end of the line, while the console waits for the BBC
  QMenuBar* menuBar_;
};

}  // namespace sectorbox
