#pragma once

#include "link/windows/frmBootstrap.h"

namespace sectorbox {

// "Send Format Program": sends the disc formatter with the help of a small loader.
class frmFormat : public frmBootstrap {
 public:
  frmFormat(Link& link, QWidget* parent);

 protected:
  void SendProgram(Link& link, const BootstrapProgress& progress) override;
};

}  // namespace sectorbox
