#pragma once

#include "cfcard/cards/FormatCF.h"
#include "cfcard/windows/frmCardChoice.h"

class QProgressBar;
class QPushButton;

namespace sectorbox {

// "Format CF Card": the choice of frmCF, a size, and the format itself with its progress. While the
// format runs, the user can only press Abort. The answer is that of frmCF, after the format.
class frmFormatCF : public frmCardChoice, private FormatView {
 public:
  frmFormatCF(QWidget* parent, Disc& disc, CardDrives& drives);

  void reject() override;

 private:
  void MakeControls();
  void Arrange();
  void btnOK_Click();
  void btnAbort_Click();
  void FormatStarted() override;
  void ShowFormat(const std::string& line, double percent) override;

  QComboBox* cmbCapacity_;
  QCheckBox* chkQuick_;
  QPushButton* btnOK_;
  QPushButton* btnCancel_;
  QPushButton* btnAbort_;
  QLabel* lblFormat_;
  QProgressBar* pb1_;
  bool running_ = false;
};

}  // namespace sectorbox
