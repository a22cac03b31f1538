#pragma once

#include <QSettings>
#include <QString>
#include <cstdint>
#include <stdexcept>

namespace sectorbox {

// A setting that can't be read as what it should be. The program ends on it, since going on would
// overwrite at exit what a user or an administrator has put there.
class SettingsError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The user's settings: named strings in the section "Settings" of one file in the user's own place.
// Numbers are plain decimal, flags "True" or "False". A key that isn't there gives the default; one
// that doesn't parse is a SettingsError that names key and text.
// Stores are cheap to make: all of them in a program look at the same strings.
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
  // Puts everything on the medium now.
  void Sync();
  // The folder that the settings file lies in; also the home of a recovered disc.
  QString Folder() const;

 private:
  QSettings settings_;
};

}  // namespace sectorbox
