#include "link/windows/frmFormat.h"

namespace sectorbox {

frmFormat::frmFormat(Link& link, QWidget* parent)
    : frmBootstrap(link, "frmFormat", "Send Format Program", parent) {}

void frmFormat::SendProgram(Link& link, const BootstrapProgress& progress) {
  SendFormatProgram(link, progress);
}

}  // namespace sectorbox
