#include "shell/program/Recovery.h"

#include <QDir>
#include <vector>

#include "disc/host/HostError.h"
#include "disc/host/HostFile.h"
#include "disc/image/SaveImage.h"
#include "toolkit/SettingsStore.h"
#include "toolkit/Text.h"

namespace sectorbox {
namespace {

std::string FreeName(const QString& extension) {
  const QDir folder(SettingsStore().Folder());
  folder.mkpath(QStringLiteral("."));
  for (int n = 1;; ++n) {
    const QString name = folder.filePath(QStringLiteral("Recovered%1.%2").arg(n).arg(extension));
    if (!QFile::exists(name)) return ToHost(name);
  }
}

// Writes the whole image. The operations that save a disc can't be used: they leave out what the
// map calls unused, and with Pad Disc Images one of them writes nothing.
void WriteWhole(Disc& disc, const std::string& path) {
  OutputFile file = CreateOutputFile(path);
  file.Write(disc.TheDisc.WholeFile());
  file.Close();
}

}  // namespace

QString KeepUnsavedDisc(Disc& disc) {
  if (!disc.ImageChanged) return {};
  try {
    if (!disc.TheDisc.InMemory()) {
      disc.TheDisc.CloseFile();
      return {};
    }
    const std::string path = FreeName(QString::fromLatin1(disc.TheDisc.Kind().Name));
    WriteWhole(disc, path);
    disc.ImageChanged = false;
    return QStringLiteral("The disc with your unsaved changes was kept in %1").arg(FromHost(path));
  } catch (const std::exception& error) {
    return QStringLiteral("The unsaved changes could not be kept: %1").arg(FromHost(error.what()));
  }
}

}  // namespace sectorbox
