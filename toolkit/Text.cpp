#include "toolkit/Text.h"

#include <QFile>

namespace sectorbox {

QString FromBbc(std::string_view bytes) {
  return QString::fromLatin1(bytes.data(), static_cast<qsizetype>(bytes.size()));
}

std::string ToBbc(const QString& text) {
  return text.toLatin1().toStdString();
}

QString FromHost(const std::string& text) {
  return QFile::decodeName(QByteArray::fromStdString(text));
}

std::string ToHost(const QString& text) {
  return QFile::encodeName(text).toStdString();
}

}  // namespace sectorbox
