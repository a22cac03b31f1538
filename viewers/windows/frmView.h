#pragma once

#include <QMainWindow>
#include <QPointer>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "disc/store/Disc.h"
#include "viewers/table/TextViews.h"
#include "viewers/text/TextFile.h"
#include "viewers/text/TextView.h"
#include "viewers/windows/frmFind.h"
#include "viewers/windows/frmViewText.h"

class QMessageBox;
class QPrinter;

namespace sectorbox {

// What all text views of the program share.
struct ViewShared {
  TextStyle Style;
  TextSearch Search;
};

// The one text window of the views. A launcher makes it, sets Tag and calls Show_File; from then on
// it looks after itself, its destruction included. Any number can be open, and several may be
// running, one inside the event loop of the other.
class frmView : public QMainWindow, public TextView {
  Q_OBJECT

 public:
  // disc and shared outlive the window.
  frmView(Disc& disc, ViewShared& shared);

  // Decimal text of a view's number; anything else shows nothing.
  QString Tag;
  // The view is to go to a host file, whose name the user is asked for, instead of the window.
  bool ViewAs = false;
  // Position from which Find Next goes on; -1 when there is nothing to go on with.
  int FindPos = 0;
  // The output goes to a host file, and the window stays hidden.
  bool ToFile = false;
  std::string OutputName;

  // Runs the view named by Tag, to its end or to a close request, and comes back then. The launcher
  // takes target from the main window when the view starts: the panes may change while it runs.
  void Show_File(const ViewTarget& target);

  // The whole text as plain text, in one piece. Apart from the choice of the printer this is what
  // Print does.
  void PrintTo(QPrinter& printer);

  // What a generator asks of its window.
  void SetCaption(const std::string& caption) override;
  void ShowMessage(const std::string& text) override;
  void WidenWindow(int twips) override;
  void CloseWindow() override { close(); }

 protected:
  void Append(const std::string& text) override;
  void closeEvent(QCloseEvent* event) override;

 private:
  void MakeMenus();
  bool OpenOutput();
  void RunGenerator(const ViewTarget& target);
  void Form_Unload();
  void mnuFileSave_Click();
  void mnuFilePrint_Click();
  void mnuEditFind_Click();
  void mnuEditNext_Click();
  void mnuEditCopy_Click();
  void ShowError(const std::exception& error);

  Disc& disc_;
  ViewShared& shared_;
  ViewText* rtbView_;
  std::optional<TextFile> file_;
  QPointer<QMessageBox> box_;
  bool running_ = false;
  bool unloaded_ = false;
};

}  // namespace sectorbox
