// Attributes, addresses, titles and the boot option: changes that move nothing.

#include <algorithm>

#include "disc/catalogue/Adfs.h"
#include "disc/change/DirectoryEdit.h"
#include "disc/change/Mutation.h"

namespace sectorbox {
namespace {

using namespace format;

void SetFlag(EntryBytes& entry, std::int32_t attribute, bool on) {
  std::uint8_t& byte = entry[static_cast<std::size_t>(attribute)];
  byte = static_cast<std::uint8_t>(on ? byte | kTopBit : byte & kLowBits);
}

}  // namespace

void SetEntryAttributes(Disc& disc, std::int32_t DirSector, const std::string& Name, bool Read,
                        bool Write, bool Locked) {
  const std::int32_t slot = FindEntry(disc, DirSector, Name);
  if (slot < 0) return;
  EntryBytes entry = ReadEntry(disc, DirSector, slot);
  SetFlag(entry, kAttrRead, Read);
  SetFlag(entry, kAttrWrite, Write);
  SetFlag(entry, kAttrLocked, Locked);
  entry[kEntrySequence] = BumpSequence(disc, DirSector);
  WriteEntry(disc, DirSector, slot, entry);
  CopyNameToDirectory(disc, entry, kAttrLocked + 1);
}

void SetEntryAddresses(Disc& disc, std::int32_t DirSector, const std::string& Name,
                       const std::string& Load, const std::string& Exec) {
  const std::int32_t slot = FindEntry(disc, DirSector, Name);
  if (slot < 0) return;
  EntryBytes entry = ReadEntry(disc, DirSector, slot);
  SetNumber(entry, kEntryExec, ParseAddress(Exec), 4);
  SetNumber(entry, kEntryLoad, ParseAddress(Load), 4);
  entry[kEntrySequence] = BumpSequence(disc, DirSector);
  WriteEntry(disc, DirSector, slot, entry);
}

void SetDirTitle(Disc& disc, std::int32_t DirSector, const std::string& Title) {
  const std::string title = Title.substr(0, kTitleLength);
  // A title may hold blanks, which a name may not.
  if (HoldsIllegalCharacters(title, "-.:*#$&@^")) {
    disc.Host.ShowMessage("Title " + title + " Contains Illegal Characters");
    return;
  }
  const std::string padded = PadTitle(title);
  disc.TheDisc.StoreBytes(
      SectorOffset(DirSector) + kDirTitle,
      std::span(reinterpret_cast<const std::uint8_t*>(padded.data()), padded.size()));
  BumpSequence(disc, DirSector);
}

// The map's checksum stays stale and no save will be asked for: the option reaches an image in
// memory only if something else prompts a save. The window has always worked so.
void SetBootOption(Disc& disc, std::uint8_t option) {
  disc.TheDisc.Store(kMapBootOption, option);
}

}  // namespace sectorbox
