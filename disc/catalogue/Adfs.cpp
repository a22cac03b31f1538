#include "disc/catalogue/Adfs.h"

#include <algorithm>
#include <array>

namespace sectorbox {
namespace {

using namespace format;

std::string FetchText(Disc& disc, std::int64_t offset, std::int32_t length) {
  std::string text(static_cast<std::size_t>(length), '\0');
  disc.TheDisc.FetchBytes(offset,
                          std::span(reinterpret_cast<std::uint8_t*>(text.data()), text.size()));
  for (char& c : text) c = static_cast<char>(static_cast<std::uint8_t>(c) & kLowBits);
  return text;
}

std::string CutAt(std::string text, char end) {
  const auto at = text.find(end);
  if (at != std::string::npos) text.resize(at);
  return text;
}

}  // namespace

std::int64_t SectorOffset(std::int32_t sector) {
  return std::int64_t{sector} * kSectorSize;
}

std::int64_t EntryOffset(std::int32_t DirSector, std::int32_t Slot) {
  return SectorOffset(DirSector) + kDirEntries + std::int64_t{Slot} * kEntrySize;
}

std::int32_t Fetch24(Disc& disc, std::int64_t offset) {
  std::array<std::uint8_t, 3> b{};
  disc.TheDisc.FetchBytes(offset, b);
  return b[0] | b[1] << 8 | b[2] << 16;
}

std::uint32_t Fetch32(Disc& disc, std::int64_t offset) {
  std::array<std::uint8_t, 4> b{};
  disc.TheDisc.FetchBytes(offset, b);
  return static_cast<std::uint32_t>(b[0]) | static_cast<std::uint32_t>(b[1]) << 8 |
         static_cast<std::uint32_t>(b[2]) << 16 | static_cast<std::uint32_t>(b[3]) << 24;
}

void Store24(Disc& disc, std::int64_t offset, std::int32_t value) {
  const auto v = static_cast<std::uint32_t>(value);
  for (int i = 0; i < 3; ++i) {
    disc.TheDisc.Store(offset + i, static_cast<std::uint8_t>(v >> (8 * i)));
  }
}

std::string Hex(std::uint64_t value, int digits) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  std::string text(static_cast<std::size_t>(digits), '0');
  for (auto at = text.rbegin(); at != text.rend(); ++at, value >>= 4) *at = kDigits[value & 15];
  return text;
}

std::uint32_t ParseHex(std::string_view text) {
  std::uint32_t value = 0;
  for (const char c : text) {
    std::uint32_t digit = 0;
    if (c >= '0' && c <= '9') {
      digit = static_cast<std::uint32_t>(c - '0');
    } else if (c >= 'A' && c <= 'F') {
      digit = static_cast<std::uint32_t>(c - 'A') + 10;
    } else if (c >= 'a' && c <= 'f') {
      digit = static_cast<std::uint32_t>(c - 'a') + 10;
    } else {
      break;
    }
    value = value << 4 | digit;
  }
  return value;
}

std::string UpperCase(std::string_view text) {
  std::string upper(text);
  for (char& c : upper) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return upper;
}

std::string SignedDecimal(std::int64_t value) {
  return (value < 0 ? "" : " ") + std::to_string(value);
}

bool IsDirectory(Disc& disc, std::int32_t DirSector) {
  std::array<std::uint8_t, kHugoLength> mark{};
  disc.TheDisc.FetchBytes(SectorOffset(DirSector) + kDirMark, mark);
  return std::equal(mark.begin(), mark.end(), kHugo);
}

std::string GetEntryName(Disc& disc, std::int32_t DirSector, std::int32_t Slot) {
  return CutAt(FetchText(disc, EntryOffset(DirSector, Slot), kNameLength), '\r');
}

bool EntryIsEmpty(std::string_view name) {
  return name.empty() || name[0] == '\0';
}

std::int32_t FindEntry(Disc& disc, std::int32_t DirSector, std::string_view Name) {
  const std::string wanted = UpperCase(Name);
  for (std::int32_t slot = 0; slot < kEntryCount; ++slot) {
    const std::string name = GetEntryName(disc, DirSector, slot);
    if (EntryIsEmpty(name)) break;
    if (UpperCase(name) == wanted) return slot;
  }
  return -1;
}

std::int32_t GetEntrySector(Disc& disc, std::int32_t DirSector, std::string_view Name) {
  const std::int32_t slot = FindEntry(disc, DirSector, Name);
  if (slot < 0) return -1;
  return Fetch24(disc, EntryOffset(DirSector, slot) + kEntrySector);
}

bool EntryHas(Disc& disc, std::int64_t offset, std::int32_t attribute) {
  return (disc.TheDisc.Fetch(offset + kEntryName + attribute) & kTopBit) != 0;
}

std::string GetEntryAttributes(Disc& disc, std::int64_t offset) {
  static constexpr std::array<std::pair<std::int32_t, char>, 5> kLetters = {
      {{kAttrExecuteOnly, 'E'},
       {kAttrDirectory, 'D'},
       {kAttrLocked, 'L'},
       {kAttrWrite, 'W'},
       {kAttrRead, 'R'}}};
  std::string letters;
  for (const auto& [attribute, letter] : kLetters) {
    if (EntryHas(disc, offset, attribute)) letters += letter;
  }
  return letters;
}

std::string HexByte(Disc& disc, std::int64_t offset) {
  return Hex(disc.TheDisc.Fetch(offset), 2);
}

std::string HexSector(Disc& disc, std::int64_t offset) {
  return Hex(static_cast<std::uint32_t>(Fetch24(disc, offset)), 6);
}

std::string HexDword(Disc& disc, std::int64_t offset) {
  return Hex(Fetch32(disc, offset), 8);
}

std::string GetDirName(Disc& disc, std::int32_t DirSector) {
  const std::string name =
      CutAt(CutAt(FetchText(disc, SectorOffset(DirSector) + kDirName, kNameLength), '\r'), '\0');
  return name.empty() && DirSector == kRootSector ? "$" : name;
}

std::string GetDirTitle(Disc& disc, std::int32_t DirSector) {
  return CutAt(CutAt(FetchText(disc, SectorOffset(DirSector) + kDirTitle, kTitleLength), '\r'),
               '\0');
}

std::uint8_t NextSequence(std::uint8_t b) {
  const int next = (b / 16 * 10 + b % 16 + 1) % 100;
  return static_cast<std::uint8_t>(next / 10 * 16 + next % 10);
}

std::uint8_t MapChecksum(Disc& disc, std::int32_t base) {
  std::array<std::uint8_t, kSectorSize> sector{};
  disc.TheDisc.FetchBytes(base, sector);
  return MapChecksum(sector);
}

std::uint8_t MapChecksum(std::span<const std::uint8_t, kSectorSize> sector) {
  int sum = 255;
  int carry = 0;
  for (std::size_t i = 255; i-- > 0;) {
    const int t = sum + sector[i] + carry;
    sum = t % 256;
    carry = t / 256;
  }
  return static_cast<std::uint8_t>(sum);
}

std::int32_t MapDiscSize(Disc& disc) {
  return Fetch24(disc, kMapDiscSize);
}

std::int32_t RunsOfEndPointer(std::uint8_t end) {
  return std::min((end + 1) / kMapEntrySize, kMapEntriesInMemory);
}

void ReadFreeMap(Disc& disc) {
  disc.FreeCount = static_cast<std::int16_t>(RunsOfEndPointer(disc.TheDisc.Fetch(kMapEnd)));
  for (std::int32_t i = 0; i < disc.FreeCount; ++i) {
    const auto index = static_cast<std::size_t>(i);
    disc.FreeStart[index] = Fetch24(disc, kMapStarts + kMapEntrySize * i);
    disc.FreeLen[index] = Fetch24(disc, kMapLengths + kMapEntrySize * i);
  }
}

void ShowFreeSpace(Disc& disc) {
  std::int64_t free = 0;
  for (std::int16_t i = 0; i < disc.FreeCount; ++i) {
    free += disc.FreeLen[static_cast<std::size_t>(i)];
  }
  const std::int64_t total = MapDiscSize(disc);
  disc.Host.SetStatus(SignedDecimal(free * kSectorSize) + " Bytes Free, " +
                          SignedDecimal((total - free) * kSectorSize) + " Bytes Used",
                      false);
}

std::optional<std::int32_t> TrimmedSize(const Disc& disc, std::int32_t discSize) {
  if (disc.FreeCount <= 0) return std::nullopt;
  const auto last = static_cast<std::size_t>(disc.FreeCount - 1);
  const std::int32_t start = disc.FreeStart[last];
  // The map and the root are never free, whatever a damaged map says.
  if (start < kFirstFreeSector || start > discSize || start + disc.FreeLen[last] < discSize)
    return std::nullopt;
  return start;
}

}  // namespace sectorbox
