#include "toolkit/Text.h"

#include <QFile>

namespace sectorbox {

QString FromBbc(std::string_view bytes) {
  return QString::fromLatin1(bytes.data(), static_cast<qsizetype>(bytes.size()));
}

std::string ToBbc(const QString& text) {
  return text.toLatin1().toStdString();
}

std::string TypedToBbc(const QString& text) {
  constexpr char16_t kLastByte = 0xFF;
  QString bytes = text;
  for (QChar& c : bytes) {
    if (c.unicode() > kLastByte) c = QChar(kLastByte);
  }
  return ToBbc(bytes);
}

QString FromHost(const std::string& text) {
  return QFile::decodeName(QByteArray::fromStdString(text));
}

std::string ToHost(const QString& text) {
  return QFile::encodeName(text).toStdString();
}

}  // namespace sectorbox
