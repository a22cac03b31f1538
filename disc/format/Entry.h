#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "disc/format/Format.h"

namespace sectorbox {

// The attributes of an entry. Each is the top bit of a byte of its name; the value is that byte.
enum class Attribute : std::uint8_t {
  kRead = 0,
  kWrite = 1,
  kLocked = 2,
  kDirectory = 3,
  kExecuteOnly = 4,
};

// One entry of a directory, as a value: a name, attributes, two addresses, a length, a start sector
// and a sequence number. It keeps all 26 bytes that the disc holds, also those behind the end of
// the name, so that an entry that is read and written again is the same to the byte.
//
// The BBC gives an empty file no sector. Here every file owns at least one, and Sectors says so.
class Entry {
 public:
  using Bytes = std::array<std::uint8_t, format::kEntrySize>;

  // All bytes zero: an empty entry.
  Entry() = default;
  explicit Entry(std::span<const std::uint8_t, format::kEntrySize> bytes);

  [[nodiscard]] const Bytes& Raw() const { return bytes_; }
  // True if this entry ends the list of a directory: its name has no first character.
  [[nodiscard]] bool IsEmpty() const;
  // True if the name's first byte is 0. An entry whose name begins with a carriage return is empty,
  // but not unused.
  [[nodiscard]] bool IsUnused() const;

  // The ten name bytes, top bits cleared, cut before the first carriage return. Without a carriage
  // return in the field the text has ten bytes, NULs included.
  [[nodiscard]] std::string Name() const;
  [[nodiscard]] bool Has(Attribute attribute) const;
  [[nodiscard]] bool IsDirectory() const { return Has(Attribute::kDirectory); }
  [[nodiscard]] bool IsLocked() const { return Has(Attribute::kLocked); }
  // The letters E, D, L, W, R in that order, one for each attribute that is set.
  [[nodiscard]] std::string Letters() const;
  [[nodiscard]] std::uint32_t Load() const;
  [[nodiscard]] std::uint32_t Exec() const;
  // The length field, in bytes. A directory's field should say 1280, but nothing relies on it.
  [[nodiscard]] std::uint32_t Length() const;
  // Bytes that the object has: the length field of a file, 1280 for a directory.
  [[nodiscard]] std::uint32_t Size() const;
  // Sectors that the object owns: five for a directory, at least one for a file.
  [[nodiscard]] std::int32_t Sectors() const;
  [[nodiscard]] std::int32_t Start() const;
  // Two BCD digits: the directory's sequence number when the entry was last changed.
  [[nodiscard]] std::uint8_t Sequence() const;

  // Puts the name, a carriage return and NULs into the name field, which holds ten bytes. All
  // attributes become clear.
  void SetName(std::string_view name);
  // The same, but the top bit of every name byte stays as it was, and with it all attributes.
  void Rename(std::string_view name);
  void Set(Attribute attribute, bool on);
  void SetLoad(std::uint32_t load);
  void SetExec(std::uint32_t exec);
  void SetLength(std::uint32_t length);
  void SetStart(std::int32_t sector);
  void SetSequence(std::uint8_t sequence);

 private:
  [[nodiscard]] std::uint32_t Number(std::int32_t at, std::size_t bytes) const;
  void SetNumber(std::int32_t at, std::size_t bytes, std::uint32_t value);

  Bytes bytes_{};
};

}  // namespace sectorbox
