#include "toolkit/SettingsStore.h"

#include <QFileInfo>
#include <QLocale>
#include <cmath>

namespace sectorbox {
namespace {

QString Path(const char* key) {
  return QStringLiteral("Settings/") + QLatin1String(key);
}

[[noreturn]] void Refuse(const char* key, const QString& text, const char* wanted) {
  throw SettingsError(QStringLiteral("The setting %1 can't be read: \"%2\" is not %3.")
                          .arg(QLatin1String(key), text, QLatin1String(wanted))
                          .toStdString());
}

// At most 16 significant digits, and no exponent for any place on a screen.
QString PlainDecimal(double value) {
  return QString::number(value, 'g', 15);
}

}  // namespace

SettingsStore::SettingsStore()
    : settings_(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("Sectorbox"),
                QStringLiteral("Sectorbox")) {
  settings_.setFallbacksEnabled(false);
}

QString SettingsStore::GetString(const char* key, const QString& byDefault) const {
  const QVariant value = settings_.value(Path(key));
  if (!value.isValid()) return byDefault;
  // QSettings gives a line with a comma, which a user may have written by hand, as a list.
  if (value.typeId() == QMetaType::QStringList) {
    return value.toStringList().join(QStringLiteral(", "));
  }
  return value.toString();
}

std::int16_t SettingsStore::GetInt16(const char* key, std::int16_t byDefault) const {
  if (!Has(key)) return byDefault;
  const QString text = GetString(key);
  bool parsed = false;
  const short value = text.trimmed().toShort(&parsed, 10);
  if (!parsed) Refuse(key, text, "a number from -32768 to 32767");
  return value;
}

double SettingsStore::GetTwips(const char* key, double byDefault) const {
  if (!Has(key)) return byDefault;
  const QString text = GetString(key);
  bool parsed = false;
  const double value = QLocale::c().toDouble(text.trimmed(), &parsed);
  if (!parsed || !std::isfinite(value)) Refuse(key, text, "a number");
  return value;
}

bool SettingsStore::GetFlag(const char* key, bool byDefault) const {
  if (!Has(key)) return byDefault;
  const QString text = GetString(key);
  const QString word = text.trimmed();
  if (word.compare(QLatin1String("True"), Qt::CaseInsensitive) == 0) return true;
  if (word.compare(QLatin1String("False"), Qt::CaseInsensitive) == 0) return false;
  Refuse(key, text, "True or False");
}

void SettingsStore::PutString(const char* key, const QString& value) {
  settings_.setValue(Path(key), value);
}

void SettingsStore::PutInt16(const char* key, std::int16_t value) {
  PutString(key, QString::number(value));
}

void SettingsStore::PutTwips(const char* key, double value) {
  PutString(key, PlainDecimal(value));
}

void SettingsStore::PutFlag(const char* key, bool value) {
  PutString(key, value ? QStringLiteral("True") : QStringLiteral("False"));
}

bool SettingsStore::Has(const char* key) const {
  return settings_.contains(Path(key));
}

void SettingsStore::Sync() {
  settings_.sync();
}

QString SettingsStore::Folder() const {
  return QFileInfo(settings_.fileName()).absolutePath();
}

}  // namespace sectorbox
