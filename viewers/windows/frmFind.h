#pragma once

#include <QDialog>
#include <QLineEdit>

namespace sectorbox {

// What is looked for: one for all views of the program, so that the last text is remembered across
// windows. FindOK says whether the dialog was left with its OK.
struct TextSearch {
  QString FindText;
  bool FindOK = false;
};

// "Find". Loads with the text that was looked for last, all of it selected.
class frmFind : public QDialog {
 public:
  frmFind(QWidget* parent, TextSearch& search);

 private:
  void cmdOK_Click();

  TextSearch& search_;
  QLineEdit* txtFind_;
};

}  // namespace sectorbox
