#pragma once

#include <QIcon>

namespace sectorbox {

// A drawing of shell/icons by its file's name. All are vectors: they are crisp at every scale.
QIcon LoadIcon(const char* name);

}  // namespace sectorbox
