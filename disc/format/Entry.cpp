#include "disc/format/Entry.h"

#include <algorithm>
#include <utility>

#include "disc/format/LittleEndian.h"
#include "disc/format/Names.h"

namespace sectorbox {

using namespace format;

namespace {

constexpr std::size_t kWord = 4;

constexpr std::size_t ByteOf(Attribute attribute) {
  return static_cast<std::size_t>(kEntryName) + static_cast<std::size_t>(attribute);
}

}  // namespace

Entry::Entry(std::span<const std::uint8_t, kEntrySize> bytes) {
  std::copy(bytes.begin(), bytes.end(), bytes_.begin());
}

bool Entry::IsEmpty() const {
  return IsUnused() || (bytes_[kEntryName] & kLowBits) == '\r';
}

bool Entry::IsUnused() const {
  return (bytes_[kEntryName] & kLowBits) == 0;
}

std::string Entry::Name() const {
  std::string name;
  for (std::size_t i = 0; i < kNameLength; ++i) {
    const auto c = static_cast<char>(bytes_[kEntryName + i] & kLowBits);
    if (c == '\r') break;
    name += c;
  }
  return name;
}

bool Entry::Has(Attribute attribute) const {
  return (bytes_[ByteOf(attribute)] & kTopBit) != 0;
}

std::string Entry::Letters() const {
  static constexpr std::array<std::pair<Attribute, char>, 5> kLetters = {
      {{Attribute::kExecuteOnly, 'E'},
       {Attribute::kDirectory, 'D'},
       {Attribute::kLocked, 'L'},
       {Attribute::kWrite, 'W'},
       {Attribute::kRead, 'R'}}};
  std::string letters;
  for (const auto& [attribute, letter] : kLetters) {
    if (Has(attribute)) letters += letter;
  }
  return letters;
}

std::uint32_t Entry::Load() const {
  return Number(kEntryLoad, kWord);
}

std::uint32_t Entry::Exec() const {
  return Number(kEntryExec, kWord);
}

std::uint32_t Entry::Length() const {
  return Number(kEntryLength, kWord);
}

std::uint32_t Entry::Size() const {
  return IsDirectory() ? static_cast<std::uint32_t>(kDirSize) : Length();
}

std::int32_t Entry::Sectors() const {
  return SectorsOfLength(Size());
}

std::int32_t Entry::Start() const {
  return static_cast<std::int32_t>(Number(kEntrySector, kSectorNumberSize));
}

std::uint8_t Entry::Sequence() const {
  return bytes_[kEntrySequence];
}

void Entry::SetName(std::string_view name) {
  const std::string padded = PadName(name);
  std::transform(padded.begin(), padded.end(), bytes_.begin() + kEntryName,
                 [](char c) { return static_cast<std::uint8_t>(c); });
}

void Entry::Rename(std::string_view name) {
  Entry named;
  named.SetName(name);
  for (std::size_t i = kEntryName; i < kEntryName + kNameLength; ++i) {
    bytes_[i] = static_cast<std::uint8_t>((bytes_[i] & kTopBit) | named.bytes_[i]);
  }
}

void Entry::Set(Attribute attribute, bool on) {
  std::uint8_t& byte = bytes_[ByteOf(attribute)];
  byte = static_cast<std::uint8_t>(on ? byte | kTopBit : byte & kLowBits);
}

void Entry::SetLoad(std::uint32_t load) {
  SetNumber(kEntryLoad, kWord, load);
}

void Entry::SetExec(std::uint32_t exec) {
  SetNumber(kEntryExec, kWord, exec);
}

void Entry::SetLength(std::uint32_t length) {
  SetNumber(kEntryLength, kWord, length);
}

void Entry::SetStart(std::int32_t sector) {
  SetNumber(kEntrySector, kSectorNumberSize, static_cast<std::uint32_t>(sector));
}

void Entry::SetSequence(std::uint8_t sequence) {
  bytes_[kEntrySequence] = sequence;
}

std::uint32_t Entry::Number(std::int32_t at, std::size_t bytes) const {
  return ReadLittleEndian(std::span(bytes_).subspan(static_cast<std::size_t>(at), bytes));
}

void Entry::SetNumber(std::int32_t at, std::size_t bytes, std::uint32_t value) {
  WriteLittleEndian(std::span(bytes_).subspan(static_cast<std::size_t>(at), bytes), value);
}

}  // namespace sectorbox
