#include "shell/program/Icons.h"

#include <QString>

// Drawings in a static library are only found after this, which must stand outside of namespaces.
static void RegisterDrawings() {
  Q_INIT_RESOURCE(icons);
}

namespace sectorbox {

QIcon LoadIcon(const char* name) {
  static const bool registered = (RegisterDrawings(), true);
  static_cast<void>(registered);
  return QIcon(QStringLiteral(":/icons/%1.svg").arg(QLatin1String(name)));
}

}  // namespace sectorbox
