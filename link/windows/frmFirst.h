#pragma once

#include "link/windows/frmBootstrap.h"

namespace sectorbox {

// "Send Basic Program": types the transfer server into the BBC's BASIC.
class frmFirst : public frmBootstrap {
 public:
  frmFirst(Link& link, QWidget* parent);

 protected:
  void SendProgram(Link& link, const BootstrapProgress& progress) override;
};

}  // namespace sectorbox
