#include "cfcard/frmCardFiles.h"

#include <QStringList>

#include "toolkit/SettingsStore.h"
#include "toolkit/Text.h"

namespace sectorbox {
namespace {

constexpr const char* kKey = "CardFiles";

QStringList StoredPaths() {
  return SettingsStore().GetString(kKey).split(u'\n', Qt::SkipEmptyParts);
}

}  // namespace

void ReadCardFiles(CardDrives& drives) {
  std::vector<std::string> paths;
  const QStringList stored = StoredPaths();
  for (const QString& path : stored) paths.push_back(ToHost(path));
  drives.SetCardFiles(std::move(paths));
}

void AddCardFile(const QString& path) {
  QStringList paths = StoredPaths();
  if (!paths.contains(path)) paths.append(path);
  SettingsStore().PutString(kKey, paths.join(u'\n'));
}

}  // namespace sectorbox
