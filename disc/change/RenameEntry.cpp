#include "disc/catalogue/Adfs.h"
#include "disc/change/DirectoryEdit.h"
#include "disc/change/Mutation.h"

namespace sectorbox {
namespace {

using namespace format;

// The entry with its name field taken from the padded name and its attributes kept.
EntryBytes Renamed(EntryBytes entry, const std::string& name) {
  EntryBytes named{};
  SetName(named, name);
  for (std::size_t i = 0; i < kNameLength; ++i) {
    entry[i] = static_cast<std::uint8_t>((entry[i] & kTopBit) | named[i]);
  }
  return entry;
}

}  // namespace

bool RenameEntry(Disc& disc, const std::string& NewName, const std::string& OldName,
                 std::int32_t DirSector, bool IgnoreLock) {
  const std::int32_t slot = FindEntry(disc, DirSector, OldName);
  if (slot < 0) return true;
  const std::int64_t offset = EntryOffset(DirSector, slot);
  if (!IgnoreLock && EntryHas(disc, offset, kAttrLocked)) {
    disc.Host.ShowMessage(EntryHas(disc, offset, kAttrDirectory)
                              ? "Cannot Rename Locked Directory : " + OldName
                              : "Cannot Rename Locked File : " + OldName);
    return true;
  }
  const std::string name = NewName.substr(0, kNameLength);
  // The look-up is blind to case and finds the entry itself too: a change of case alone is refused.
  if (FindEntry(disc, DirSector, name) >= 0) {
    disc.Host.ShowMessage(name + " Already Exists");
    return true;
  }
  if (name.empty() || HoldsIllegalCharacters(name, " -.:*#$&@^")) {
    disc.Host.ShowMessage(IllegalNameMessage(name));
    return true;
  }
  EntryBytes entry = Renamed(ReadEntry(disc, DirSector, slot), name);
  entry[kEntrySequence] = BumpSequence(disc, DirSector);
  CloseGap(disc, DirSector, slot);
  // The padded name is what is compared: its carriage return sorts before any longer name that
  // begins with it.
  const Place place = FindPlace(disc, DirSector, PadName(name));
  OpenGap(disc, DirSector, place.Slot);
  WriteEntry(disc, DirSector, place.Slot, entry);
  CopyNameToDirectory(disc, entry, kNameLength);
  return false;
}

}  // namespace sectorbox
