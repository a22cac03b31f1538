#pragma once

#include <QSettings>
#include <QString>
#include <cstdint>
#include <stdexcept>

namespace sectorbox {

// The text of a setting isn't of the setting's type. The program ends on it: if it went on, it
// would overwrite at its exit what a user or an administrator has put there.
class SettingsError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The user's settings: named strings in the section "Settings" of one file in the user's own place.
// Numbers are plain decimal, flags "True" or "False". A key that doesn't exist gives the default. A
// text that doesn't parse is a SettingsError that names key and text.
// A store is cheap to make: all stores of a program look at the same strings.
class SettingsStore {
 public:
  SettingsStore();

  QString GetString(const char* key, const QString& byDefault = {}) const;
  // -32768 to 32767.
  std::int16_t GetInt16(const char* key, std::int16_t byDefault) const;
  // A finite floating-point number, in twips.
  double GetTwips(const char* key, double byDefault) const;
  bool GetFlag(const char* key, bool byDefault) const;

  void PutString(const char* key, const QString& value);
  void PutInt16(const char* key, std::int16_t value);
  void PutTwips(const char* key, double value);
  void PutFlag(const char* key, bool value);

  bool Has(const char* key) const;
  // Writes everything to the settings file now.
  void Sync();
  // The folder of the settings file. A recovered disc lies there too.
  QString Folder() const;

 private:
  QSettings settings_;
};

}  // namespace sectorbox
