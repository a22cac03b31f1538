#pragma once

#include <QMainWindow>
#include <QPointer>
#include <optional>
#include <string>

#include "disc/store/Disc.h"
#include "toolkit/TextWindow.h"
#include "viewers/table/TextViews.h"
#include "viewers/text/TextFile.h"
#include "viewers/text/TextView.h"

class QMessageBox;

namespace sectorbox {

// What all text views of the program share.
struct ViewShared {
  TextStyle Style;
  TextSearch Search;
};

// The text window of all views. A launcher makes it, sets Tag and calls Show_File; from then on the
// window needs nobody, and it deletes itself in the end. Any number of windows can be open, and
// several may be running, one inside the event loop of the other.
class frmView : public QMainWindow, public TextView, public TextWindow {
  Q_OBJECT

 public:
  // disc and shared outlive the window.
  frmView(Disc& disc, ViewShared& shared);

  // Decimal text of a view's number; anything else shows nothing.
  QString Tag;
  // Set by the launcher: Show_File asks the user for a host file and writes the view to it.
  bool ViewAs = false;
  // The output goes to a host file, and the window stays hidden.
  bool ToFile = false;
  std::string OutputName;

  // Runs the view that Tag names, and returns at its end or after a close request. The window comes
  // up with the view's first text, or at the end of a view without any. The launcher
  // takes target from the main window when the view starts: the panes may change while it runs.
  void Show_File(const ViewTarget& target);

  // What a generator asks of its window.
  void SetCaption(const std::string& caption) override;
  void ShowMessage(const std::string& text) override;
  void WidenWindow(int twips) override;
  void CloseWindow() override { close(); }

 protected:
  void Append(const std::string& text) override;
  void closeEvent(QCloseEvent* event) override;
  std::string SaveName() const override;
  void CheckSavePath(const std::string& path) const override;

 private:
  void SetUpArea();
  void MakeMenus();
  [[nodiscard]] bool OpenOutput();
  void RunGenerator(const ViewTarget& target);
  void ShowOnce();  // unless the view goes to a file
  void Form_Unload();

  Disc& disc_;
  std::optional<TextFile> file_;
  QPointer<QMessageBox> box_;
  bool running_ = false;
  bool shown_ = false;
  bool unloaded_ = false;
};

}  // namespace sectorbox
