#include "link/windows/frmFormat.h"

namespace sectorbox {

frmFormat::frmFormat(Link& link, QWidget* parent)
    : frmBootstrap(link, "frmFormat", "Send Format Program", SendFormatProgram, parent) {}

}  // namespace sectorbox
