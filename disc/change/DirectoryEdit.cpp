#include "disc/change/DirectoryEdit.h"

#include <algorithm>
#include <vector>

#include "disc/catalogue/Adfs.h"

namespace sectorbox {
namespace {

using namespace format;

std::string Pad(const std::string& text, std::int32_t width) {
  const auto size = static_cast<std::size_t>(width);
  std::string padded = text + '\r';
  padded.resize(std::max(padded.size(), size), '\0');
  return padded.substr(0, size);
}

// Copies entries from first on, as many as count, to the slot to.
void MoveEntries(Disc& disc, std::int32_t DirSector, std::int32_t first, std::int32_t count,
                 std::int32_t to) {
  std::vector<std::uint8_t> entries(static_cast<std::size_t>(count * kEntrySize));
  disc.TheDisc.FetchBytes(EntryOffset(DirSector, first), entries);
  disc.TheDisc.StoreBytes(EntryOffset(DirSector, to), entries);
}

}  // namespace

std::uint8_t BumpSequence(Disc& disc, std::int32_t DirSector) {
  const std::int64_t base = SectorOffset(DirSector);
  const std::uint8_t next = NextSequence(disc.TheDisc.Fetch(base + kDirSequence));
  disc.TheDisc.Store(base + kDirSequence, next);
  disc.TheDisc.Store(base + kDirSequenceCopy, next);
  disc.ImageChanged = true;
  return next;
}

EntryBytes ReadEntry(Disc& disc, std::int32_t DirSector, std::int32_t Slot) {
  EntryBytes entry{};
  disc.TheDisc.FetchBytes(EntryOffset(DirSector, Slot), entry);
  return entry;
}

void WriteEntry(Disc& disc, std::int32_t DirSector, std::int32_t Slot, const EntryBytes& entry) {
  disc.TheDisc.StoreBytes(EntryOffset(DirSector, Slot), entry);
}

void OpenGap(Disc& disc, std::int32_t DirSector, std::int32_t Slot) {
  MoveEntries(disc, DirSector, Slot, kEntryCount - 1 - Slot, Slot + 1);
}

void CloseGap(Disc& disc, std::int32_t DirSector, std::int32_t Slot) {
  MoveEntries(disc, DirSector, Slot + 1, kEntryCount - 1 - Slot, Slot);
  WriteEntry(disc, DirSector, kEntryCount - 1, {});
}

bool DirectoryIsFull(Disc& disc, std::int32_t DirSector) {
  return (disc.TheDisc.Fetch(SectorOffset(DirSector) + kDirLastEntry) & kLowBits) != 0;
}

Place FindPlace(Disc& disc, std::int32_t DirSector, std::string_view Name) {
  const std::string wanted = UpperCase(Name);
  Place place;
  for (; place.Slot < kEntryCount; ++place.Slot) {
    const std::string name = GetEntryName(disc, DirSector, place.Slot);
    if (EntryIsEmpty(name)) break;
    const int order = UpperCase(name).compare(wanted);
    place.Taken = order == 0;
    if (order >= 0) break;
  }
  return place;
}

std::string PadName(const std::string& text) {
  return Pad(text, kNameLength);
}

std::string PadTitle(const std::string& text) {
  return Pad(text, kTitleLength);
}

void SetName(EntryBytes& entry, const std::string& Name) {
  const std::string padded = PadName(Name);
  std::transform(padded.begin(), padded.end(), entry.begin() + kEntryName,
                 [](char c) { return static_cast<std::uint8_t>(c); });
}

void SetNumber(EntryBytes& entry, std::int32_t offset, std::uint32_t value, std::int32_t bytes) {
  auto at = entry.begin() + offset;
  for (std::int32_t i = 0; i < bytes; ++i) *at++ = static_cast<std::uint8_t>(value >> (8 * i));
}

std::uint32_t ParseAddress(const std::string& digits) {
  std::uint32_t value = 0;
  for (std::size_t pair = 0; pair < 8; pair += 2) {
    std::string two = pair < digits.size() ? digits.substr(pair, 2) : "";
    two.erase(0, two.find_first_not_of(' '));
    value = value << 8 | ParseHex(two);
  }
  return value;
}

void CopyNameToDirectory(Disc& disc, const EntryBytes& entry, std::int32_t bytes) {
  if ((entry[kAttrDirectory] & kTopBit) == 0) return;
  const std::int32_t start =
      entry[kEntrySector] | entry[kEntrySector + 1] << 8 | entry[kEntrySector + 2] << 16;
  if (!IsDirectory(disc, start)) return;
  disc.TheDisc.StoreBytes(SectorOffset(start) + kDirName,
                          std::span(entry).first(static_cast<std::size_t>(bytes)));
}

bool HoldsIllegalCharacters(std::string_view text, std::string_view set) {
  return std::any_of(text.begin(), text.end(), [&](char c) {
    return c < 32 || static_cast<std::uint8_t>(c) > 127 || set.find(c) != std::string_view::npos;
  });
}

bool NameCannotBeStored(std::string_view Name) {
  return EntryIsEmpty(Name) || Name[0] == '\r' || std::any_of(Name.begin(), Name.end(), [](char c) {
           return (static_cast<std::uint8_t>(c) & kTopBit) != 0;
         });
}

std::string IllegalNameMessage(const std::string& Name) {
  return "File " + Name + " Contains Illegal Characters";
}

}  // namespace sectorbox
