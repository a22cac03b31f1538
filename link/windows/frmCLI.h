#pragma once

#include <QDialog>
#include <QPlainTextEdit>
#include <QString>
#include <functional>
#include <optional>

#include "link/wire/Link.h"

class QLineEdit;
class QMenu;
class QMenuBar;

namespace sectorbox {

// The BBC's prompt: a command goes out at Enter, what it prints stays here until the window closes.
// It doesn't connect; the server must be listening at the speed that stands. link outlives it.
class frmCLI : public QDialog {
 public:
  // find shows the program's one search dialog and gives the text, nothing when it was cancelled.
  using AskFindText = std::function<std::optional<QString>()>;
  frmCLI(Link& link, AskFindText find, QWidget* parent);
  ~frmCLI() override;

 protected:
  void resizeEvent(QResizeEvent* event) override;
  // Escape, which at a BBC ends whatever runs, doesn't close the window and lose its output.
  void keyPressEvent(QKeyEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void MakeMenus();
  void AddEntry(QMenu* menu, const char* name, const char* caption, void (frmCLI::*run)());
  void RunCommand();
  void Insert(const std::string& text);
  qsizetype FindFrom(qsizetype position);
  void mnuFileSave_Click();
  void mnuFilePrint_Click();
  void mnuFileClose_Click();
  void mnuEditFind_Click();
  void mnuEditNext_Click();
  void mnuEditCopy_Click();
  void mnuEditSelectAll_Click();

  Link& link_;
  AskFindText find_;
  QString findText_;
  qsizetype lastFound_ = -1;  // position of the last match
  QLineEdit* txtCmd_;
  QPlainTextEdit* rtbCLI_;
  QMenuBar* menuBar_;
};

}  // namespace sectorbox
