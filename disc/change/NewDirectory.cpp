#include <algorithm>
#include <vector>

#include "disc/catalogue/Adfs.h"
#include "disc/change/DirectoryEdit.h"
#include "disc/change/FreeMap.h"
#include "disc/change/Mutation.h"

namespace sectorbox {
namespace {

using namespace format;

std::int32_t Refuse(Disc& disc, const std::string& message) {
  disc.Host.ShowMessage(message);
  return -1;
}

EntryBytes MakeEntry(const std::string& name, std::int32_t start, std::uint8_t sequence) {
  EntryBytes entry{};
  SetName(entry, name);
  // Readable, writable, a directory, and not locked.
  for (const std::int32_t attribute : {kAttrRead, kAttrWrite, kAttrDirectory}) {
    entry[static_cast<std::size_t>(attribute)] |= kTopBit;
  }
  SetNumber(entry, kEntryLength, kDirSize, 4);
  SetNumber(entry, kEntrySector, static_cast<std::uint32_t>(start), 3);
  entry[kEntrySequence] = sequence;
  return entry;
}

// The check byte stays 0: neither this system nor the BBC looks at it on a disc of this format.
void WriteEmptyDirectory(Disc& disc, std::int32_t start, std::int32_t parent,
                         const EntryBytes& entry) {
  std::vector<std::uint8_t> bytes(kDirSize);
  bytes[kDirSequence] = 1;
  bytes[kDirSequenceCopy] = 1;
  std::copy_n(kHugo, kHugoLength, bytes.begin() + kDirMark);
  std::copy_n(kHugo, kHugoLength, bytes.begin() + kDirMarkCopy);
  // The name carries the entry's attributes; the title starts as the name without them.
  std::copy_n(entry.begin(), kNameLength, bytes.begin() + kDirName);
  std::transform(entry.begin(), entry.begin() + kNameLength, bytes.begin() + kDirTitle,
                 [](std::uint8_t byte) { return static_cast<std::uint8_t>(byte & kLowBits); });
  auto at = bytes.begin() + kDirParent;
  for (std::int32_t i = 0; i < 3; ++i) *at++ = static_cast<std::uint8_t>(parent >> (8 * i));
  disc.TheDisc.StoreBytes(SectorOffset(start), bytes);
}

}  // namespace

std::int32_t NewDirectory(Disc& disc, std::int32_t DirSector, const std::string& Name) {
  const std::int32_t run = FindFreeRun(disc, kDirSize);
  if (run < 0) return Refuse(disc, kNoSpaceMessage);
  if (DirectoryIsFull(disc, DirSector)) return Refuse(disc, "Directory Full");
  const std::string name = Name.substr(0, kNameLength);
  if (NameCannotBeStored(name)) return Refuse(disc, IllegalNameMessage(Name));
  const Place place = FindPlace(disc, DirSector, name);
  if (place.Taken) return Refuse(disc, "Directory " + name + " Already Exists");

  const std::int32_t start = disc.FreeStart[static_cast<std::size_t>(run)];
  const EntryBytes entry = MakeEntry(name, start, BumpSequence(disc, DirSector));
  OpenGap(disc, DirSector, place.Slot);
  WriteEntry(disc, DirSector, place.Slot, entry);
  WriteEmptyDirectory(disc, start, DirSector, entry);
  TakeSectors(disc, run, kDirSectors);
  return start;
}

}  // namespace sectorbox
