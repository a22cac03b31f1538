#pragma once

#include <exception>
#include <string>

#include "toolkit/FileDialogs.h"
#include "toolkit/TextArea.h"
#include "toolkit/frmFind.h"

class QAction;
class QMenu;
class QMenuBar;
class QPrinter;

namespace sectorbox {

// What the windows that show text share: the area, the File and Edit menus, and what their entries
// do: save, print, close, find, find next, copy, select all. A window derives from this beside its
// Qt class, makes its menus in its constructor, and adds what it alone has, such as shortcuts.
//
// mnuFileSave asks for a file, offering SaveName, and writes the whole text and one line end.
// mnuFilePrint prints on the system's default printer without a dialog. A box tells the user when
// the file can't be written and when there is no printer.
class TextWindow {
 public:
  TextWindow(const TextWindow&) = delete;
  TextWindow& operator=(const TextWindow&) = delete;

  // Position from which Find Next goes on; -1 when there is nothing to go on with. Find Next says
  // nothing when there is no further match: then, and after a Find that was cancelled or that
  // failed, it does nothing until the next Find.
  int FindPos;

  // The whole text as plain text in one piece, with a line end. Apart from the choice of the
  // printer this is what mnuFilePrint does.
  void PrintTo(QPrinter& printer);

 protected:
  struct TextMenus {
    QMenu* File;
    QMenu* Edit;
    QAction* Find;
    QAction* Next;
    QAction* Copy;
    QAction* SelectAll;
  };

  // Makes the area as a child of window, which is the window itself: it must be a complete QWidget
  // by then. search is what all text windows of the program look for; it outlives the window.
  TextWindow(QWidget& window, const char* areaName, double pointSize, TextSearch& search,
             int findPos);
  virtual ~TextWindow() = default;

  // Puts the menus and their entries into the window's bar. The entries have their object names,
  // the menus have none.
  TextMenus MakeTextMenus(QMenuBar& bar);

  // The host file name that the save dialog offers, with its extension.
  virtual std::string SaveName() const = 0;
  // HostError if the text must not be written to path. The save dialog has given it.
  virtual void CheckSavePath(const std::string& path) const { (void)path; }
  virtual void mnuEditCopy_Click();

  // A box with the error's text.
  void ShowError(const std::exception& error);

  TextArea& Area() { return *area_; }

 private:
  template <typename Handler>
  QAction* AddEntry(QMenu& menu, const char* name, const char* caption, Handler handler);
  void mnuFileSave_Click();
  void mnuFilePrint_Click();
  void mnuEditFind_Click();
  void mnuEditNext_Click();

  QWidget& window_;
  TextArea* area_;
  TextSearch& search_;
};

// The question for a host file that a text is written to. name is offered.
FileQuestion TextFileQuestion(const std::string& name);

}  // namespace sectorbox
