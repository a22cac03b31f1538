#pragma once

#include <QCheckBox>
#include <QDialog>

namespace sectorbox {

// "Set File Attributes". The caller sets the three flags, runs the dialog and reads them back.
class frmAttr : public QDialog {
 public:
  explicit frmAttr(QWidget* parent);

  bool AttrRead = false;
  bool AttrWrite = false;
  bool AttrLocked = false;
  // OK sets it, Cancel clears it. Nothing clears it when the dialog opens, so after the close box
  // it has the value of the last use.
  bool DialogAccepted = false;

  void cmdOK_Click();
  void cmdCancel_Click();

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  QCheckBox* chkRead_;
  QCheckBox* chkWrite_;
  QCheckBox* chkLocked_;
};

}  // namespace sectorbox
