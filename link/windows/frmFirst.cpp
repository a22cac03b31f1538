#include "link/windows/frmFirst.h"

namespace sectorbox {

frmFirst::frmFirst(Link& link, QWidget* parent)
    : frmBootstrap(link, "frmFirst", "Send Basic Program", parent) {}

void frmFirst::SendProgram(Link& link, const BootstrapProgress& progress) {
  SendBasicProgram(link, progress);
}

}  // namespace sectorbox
