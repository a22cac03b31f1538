#include "toolkit/FileLists.h"

#include <QUrl>

namespace sectorbox {
namespace {

// The escapes stand for the path's own bytes, so that a name in an old encoding comes back whole.
QUrl UrlOf(const std::string& path) {
  const QByteArray escaped = QByteArray::fromStdString(path).toPercentEncoding("/");
  return QUrl::fromEncoded("file://" + escaped);
}

}  // namespace

std::unique_ptr<QMimeData> FileListData(const std::vector<std::string>& paths) {
  QList<QUrl> urls;
  for (const auto& path : paths) urls.append(UrlOf(path));
  auto data = std::make_unique<QMimeData>();
  data->setUrls(urls);
  return data;
}

std::vector<std::string> PathsOf(const QMimeData& data) {
  std::vector<std::string> paths;
  for (const QUrl& url : data.urls()) {
    if (!url.isLocalFile()) continue;
    paths.push_back(
        QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1()).toStdString());
  }
  return paths;
}

}  // namespace sectorbox
