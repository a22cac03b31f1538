#pragma once

#include "link/windows/frmBootstrap.h"

namespace sectorbox {

// "Send Format Program": sends the disc formatter, by way of a small loader.
class frmFormat : public frmBootstrap {
 public:
  frmFormat(Link& link, QWidget* parent);
};

}  // namespace sectorbox
