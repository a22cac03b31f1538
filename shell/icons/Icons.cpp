#include "shell/icons/Icons.h"

#include <QString>

// Qt finds the drawings of a static library only after this call. The call must stand outside of
// all namespaces.
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
