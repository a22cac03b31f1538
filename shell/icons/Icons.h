#pragma once

#include <QIcon>

namespace sectorbox {

// Gives the drawing of that file of shell/icons, named without ".svg". The drawings are vectors, so
// they are sharp at every scale.
[[nodiscard]] QIcon LoadIcon(const char* name);

}  // namespace sectorbox
