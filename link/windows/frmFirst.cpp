#include "link/windows/frmFirst.h"

namespace sectorbox {

frmFirst::frmFirst(Link& link, QWidget* parent)
    : frmBootstrap(link, "frmFirst", "Send Basic Program", SendBasicProgram, parent) {}

}  // namespace sectorbox
