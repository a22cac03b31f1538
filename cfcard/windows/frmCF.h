#pragma once

#include "cfcard/windows/frmCardChoice.h"

namespace sectorbox {

// "Select CF Card". Its answer is Disc::ProgressRunning: true with ImageName set, or false. The
// close box gives false, too.
class frmCF : public frmCardChoice {
 public:
  frmCF(QWidget* parent, Disc& disc, CardDrives& drives);

  void reject() override;

 private:
  void mnuOK_Click();
};

}  // namespace sectorbox
