// Any bytes are the settings file. Qt takes the file apart; each setting's text is ours. The bytes
// are then a setting's text, too, which is stored and read back.

#include <QByteArray>
#include <QSettings>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "fuzz/Require.h"
#include "tests/support/TempFolder.h"
#include "toolkit/SettingsStore.h"

namespace {

using namespace sectorbox;
using fuzz::Require;
using sectorbox::testing::TempFolder;

constexpr const char* kKeys[] = {"ComPort", "BaudRate", "Interleave", "MainLeft", "Printer", "a,b"};

// QSettings remembers the files that were read last. Each run takes another folder, and comes back
// to the first ones only when they are forgotten.
std::string NextFolder() {
  constexpr int kFolders = 64;
  static const TempFolder folder;
  static int number = 0;
  number = (number + 1) % kFolders;
  const std::string path = folder / std::to_string(number);
  std::filesystem::create_directories(path + "/Sectorbox");
  QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, QString::fromStdString(path));
  return path + "/Sectorbox/Sectorbox.ini";
}

// The value of a setting; none if it has another type. The error names the setting then.
template <typename Read>
auto ValueOf(const char* key, Read read) -> std::optional<decltype(read())> {
  try {
    return read();
  } catch (const SettingsError& error) {
    Require(std::string(error.what()).find(key) != std::string::npos, "the setting's name");
    return std::nullopt;
  }
}

// Every setting, read as each type.
struct Values {
  std::vector<std::optional<std::int16_t>> Numbers;
  std::vector<std::optional<double>> Places;
  std::vector<std::optional<bool>> Flags;
  bool operator==(const Values&) const = default;
};

Values ReadAllOf(const SettingsStore& store) {
  Values all;
  for (const char* key : kKeys) {
    Require(store.GetString(key) == store.GetString(key), "the same text twice");
    all.Numbers.push_back(ValueOf(key, [&] { return store.GetInt16(key, 1); }));
    all.Places.push_back(ValueOf(key, [&] { return store.GetTwips(key, 0); }));
    all.Flags.push_back(ValueOf(key, [&] { return store.GetFlag(key, true); }));
    Require(!all.Places.back() || std::isfinite(*all.Places.back()), "a finite number");
    if (store.Has(key)) continue;
    Require(all.Numbers.back() == 1 && all.Places.back() == 0 && all.Flags.back() == true,
            "the defaults");
  }
  return all;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::vector<std::uint8_t> bytes(data, data + size);
  const QString text =
      QString::fromUtf8(QByteArray(reinterpret_cast<const char*>(data), static_cast<int>(size)));
  const std::string file = NextFolder();
  testing::WriteAll(file, bytes);
  Values values;
  {
    SettingsStore store;
    values = ReadAllOf(store);
    store.PutString("Fuzz", text);
    store.PutInt16("Number", static_cast<std::int16_t>(size));
    store.PutTwips("Place", static_cast<double>(size) / 3);
    store.PutFlag("Flag", size % 2 == 1);
    store.Sync();
  }
  // A later program reads the same file.
  const std::string other = NextFolder();
  std::filesystem::copy_file(file, other, std::filesystem::copy_options::overwrite_existing);
  const SettingsStore store;
  Require(ReadAllOf(store) == values, "the settings that nobody changed");
  Require(store.GetString("Fuzz") == text, "a text");
  Require(store.GetInt16("Number", 0) == static_cast<std::int16_t>(size), "a number");
  Require(std::abs(store.GetTwips("Place", -1) - static_cast<double>(size) / 3) < 1e-6, "a place");
  Require(store.GetFlag("Flag", size % 2 == 0) == (size % 2 == 1), "a flag");
  return 0;
}
