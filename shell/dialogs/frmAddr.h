#pragma once

#include <QDialog>
#include <QLineEdit>
#include <string>

namespace sectorbox {

// "Set File Addresses". The caller sets the two texts, runs the dialog and reads them back as eight
// upper-case hexadecimal digits each.
class frmAddr : public QDialog {
 public:
  explicit frmAddr(QWidget* parent);

  std::string LoadText;
  std::string ExecText;
  // OK sets it before it tests the texts, and only Cancel clears it. So a refused OK leaves it set
  // for as long as the dialog stays open.
  bool DialogAccepted = false;

  void cmdOK_Click();
  void cmdCancel_Click();

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  QLineEdit* txtLoad_;
  QLineEdit* txtExec_;
};

}  // namespace sectorbox
