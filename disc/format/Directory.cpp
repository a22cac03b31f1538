#include "disc/format/Directory.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "disc/format/LittleEndian.h"
#include "disc/format/Names.h"
#include "disc/format/Text.h"

namespace sectorbox {

using namespace format;

namespace {

constexpr std::size_t SlotOffset(std::int32_t slot) {
  return static_cast<std::size_t>(kDirEntries) +
         static_cast<std::size_t>(slot) * static_cast<std::size_t>(kEntrySize);
}

bool IsMark(std::span<const std::uint8_t> bytes) {
  return std::equal(kHugo, kHugo + kHugoLength, bytes.begin());
}

}  // namespace

Directory Directory::MakeEmpty(const Entry& entry, std::int32_t parent) {
  Directory directory(Bytes{});
  directory.SetSequence(1);
  directory.SetMarks();
  directory.TakeNameOf(entry, kNameLength);
  std::array<std::uint8_t, kNameLength> title{};
  std::transform(entry.Raw().begin(), entry.Raw().begin() + kNameLength, title.begin(),
                 [](std::uint8_t byte) { return static_cast<std::uint8_t>(byte & kLowBits); });
  directory.SetBytes(kDirTitle, title);
  directory.SetParent(parent);
  return directory;
}

bool Directory::HasMark() const {
  return IsMark(std::span(bytes_).subspan(kDirMark));
}

bool Directory::HasMarkAtEnd() const {
  return IsMark(std::span(bytes_).subspan(kDirMarkCopy));
}

std::uint8_t Directory::Sequence() const {
  return bytes_[kDirSequence];
}

std::uint8_t Directory::SequenceAtEnd() const {
  return bytes_[kDirSequenceCopy];
}

std::string Directory::Name() const {
  return Text(kDirName, kNameLength);
}

std::string Directory::Title() const {
  return Text(kDirTitle, kTitleLength);
}

std::int32_t Directory::Parent() const {
  return static_cast<std::int32_t>(
      ReadLittleEndian(std::span(bytes_).subspan<kDirParent, kSectorNumberSize>()));
}

void Directory::SetMarks() {
  SetText(kDirMark, kHugo);
  SetText(kDirMarkCopy, kHugo);
}

void Directory::SetSequence(std::uint8_t sequence) {
  SetBytes(kDirSequence, std::span(&sequence, 1));
  SetBytes(kDirSequenceCopy, std::span(&sequence, 1));
}

void Directory::SetName(std::string_view name) {
  SetText(kDirName, name);
}

void Directory::SetTitle(std::string_view title) {
  SetText(kDirTitle, title);
}

void Directory::SetParent(std::int32_t sector) {
  std::array<std::uint8_t, kSectorNumberSize> number{};
  WriteLittleEndian(number, static_cast<std::uint32_t>(sector));
  SetBytes(kDirParent, number);
}

void Directory::TakeNameOf(const Entry& entry, std::int32_t bytes) {
  SetBytes(kDirName, std::span(entry.Raw()).subspan(kEntryName, static_cast<std::size_t>(bytes)));
}

Entry Directory::At(std::int32_t slot) const {
  return Entry(std::span(bytes_).subspan(SlotOffset(slot)).first<kEntrySize>());
}

std::vector<Entry> Directory::Entries() const {
  std::vector<Entry> entries;
  for (std::int32_t slot = 0; slot < kEntryCount; ++slot) {
    entries.push_back(At(slot));
    if (!entries.back().IsEmpty()) continue;
    entries.pop_back();
    break;
  }
  return entries;
}

bool Directory::HasEntries() const {
  return !At(0).IsUnused();
}

bool Directory::IsFull() const {
  return !At(kEntryCount - 1).IsUnused();
}

std::int32_t Directory::Find(std::string_view name, std::int32_t start) const {
  const std::string wanted = FoldName(name);
  std::int32_t found = -1;
  bool isAlone = true;
  for (std::int32_t slot = 0; slot < kEntryCount; ++slot) {
    const Entry entry = At(slot);
    if (entry.IsEmpty()) break;
    if (FoldName(entry.Name()) != wanted) continue;
    if (start == kAnyStart || entry.Start() == start) return slot;
    isAlone = found < 0;
    found = slot;
  }
  return isAlone ? found : -1;
}

Place Directory::FindPlace(std::string_view name) const {
  const std::string wanted = FoldName(name);
  Place place;
  for (; place.Slot < kEntryCount; ++place.Slot) {
    const Entry entry = At(place.Slot);
    if (entry.IsEmpty()) break;
    const int order = FoldName(entry.Name()).compare(wanted);
    place.Taken = order == 0;
    if (order >= 0) break;
  }
  return place;
}

std::uint8_t Directory::BumpSequence() {
  SetSequence(NextSequence(Sequence()));
  return Sequence();
}

void Directory::Put(std::int32_t slot, const Entry& entry) {
  SetBytes(SlotOffset(slot), entry.Raw());
}

void Directory::SetStart(std::int32_t slot, std::int32_t sector) {
  Entry entry = At(slot);
  entry.SetStart(sector);
  SetBytes(SlotOffset(slot) + kEntrySector,
           std::span(entry.Raw()).subspan(kEntrySector, kSectorNumberSize));
}

void Directory::Insert(std::int32_t slot, const Entry& entry) {
  if (slot >= kEntryCount) return;
  MoveEntries(slot, slot + 1, kEntryCount - 1 - slot);
  Put(slot, entry);
}

void Directory::Remove(std::int32_t slot) {
  MoveEntries(slot + 1, slot, kEntryCount - 1 - slot);
  Put(kEntryCount - 1, Entry());
}

void Directory::MoveEntries(std::int32_t from, std::int32_t to, std::int32_t count) {
  const std::size_t size = SlotOffset(count) - SlotOffset(0);
  std::memmove(&bytes_[SlotOffset(to)], &bytes_[SlotOffset(from)], size);
  set_.Set(SlotOffset(to), size);
}

std::string Directory::Text(std::int32_t at, std::int32_t length) const {
  std::string text;
  for (std::int32_t i = at; i < at + length; ++i) {
    text += static_cast<char>(bytes_[static_cast<std::size_t>(i)] & kLowBits);
  }
  return CutAt(CutAt(text, '\r'), '\0');
}

void Directory::SetText(std::int32_t at, std::string_view text) {
  SetBytes(static_cast<std::size_t>(at),
           std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
}

void Directory::SetBytes(std::size_t at, std::span<const std::uint8_t> bytes) {
  std::copy(bytes.begin(), bytes.end(), bytes_.begin() + static_cast<std::ptrdiff_t>(at));
  set_.Set(at, bytes.size());
}

std::uint8_t NextSequence(std::uint8_t b) {
  const int next = (b / 16 * 10 + b % 16 + 1) % 100;
  return static_cast<std::uint8_t>(next / 10 * 16 + next % 10);
}

}  // namespace sectorbox
