#include "cfcard/windows/frmCardFiles.h"

#include <QStringList>
#include <algorithm>

#include "disc/host/HostFile.h"
#include "toolkit/SettingsStore.h"
#include "toolkit/Text.h"

namespace sectorbox {
namespace {

constexpr const char* kKey = "CardFiles";
// The characters that are written as they are, besides letters, digits and "-._~".
constexpr const char* kPlain = " !\"#$&'()*+,/:;<=>?@[\\]^`{|}";

std::vector<std::string> StoredPaths() {
  std::vector<std::string> paths;
  const QStringList lines = SettingsStore().GetString(kKey).split(u'\n', Qt::SkipEmptyParts);
  for (const QString& line : lines) {
    paths.push_back(QByteArray::fromPercentEncoding(line.toUtf8()).toStdString());
  }
  return paths;
}

void StorePaths(const std::vector<std::string>& paths) {
  QStringList lines;
  for (const std::string& path : paths) {
    lines.append(FromBbc(QByteArray::fromStdString(path).toPercentEncoding(kPlain).toStdString()));
  }
  SettingsStore().PutString(kKey, lines.join(u'\n'));
}

bool IsSameFile(const std::string& one, const std::string& other) {
  return one == other || NameSameFile(one, other);
}

}  // namespace

void ReadCardFiles(CardDrives& drives) {
  drives.SetCardFiles(StoredPaths());
}

CardFileTaken AddCardFile(const std::string& path) {
  if (!HostFileIsPlain(path)) return CardFileTaken::kNoPlainFile;
  std::vector<std::string> paths = StoredPaths();
  const bool isListed = std::any_of(paths.begin(), paths.end(), [&](const std::string& stored) {
    return IsSameFile(stored, path);
  });
  if (isListed) return CardFileTaken::kListedAlready;
  paths.push_back(path);
  StorePaths(paths);
  return CardFileTaken::kAdded;
}

}  // namespace sectorbox
