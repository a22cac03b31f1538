#pragma once

#include <QDialog>
#include <QLineEdit>

namespace sectorbox {

// What the user looks for. All text windows of the program share one, so that the dialog remembers
// the last text across windows. FindOK says whether the user left the dialog with its OK.
struct TextSearch {
  QString FindText;
  bool FindOK = false;
};

// "Find". It shows the text that the user looked for last, all of it selected. Its OK stores the
// new text in search.
class frmFind : public QDialog {
 public:
  frmFind(QWidget* parent, TextSearch& search);

 private:
  void cmdOK_Click();

  TextSearch& search_;
  QLineEdit* txtFind_;
};

}  // namespace sectorbox
