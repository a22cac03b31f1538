#include "disc/catalogue/Directories.h"
#include "disc/change/Change.h"
#include "disc/change/DirectoryEdit.h"
#include "disc/change/FreeMap.h"
#include "disc/change/Mutation.h"
#include "disc/format/Names.h"

namespace sectorbox {
namespace {

using namespace format;

// The entry of a new directory: readable, writable, not locked.
Entry MakeEntry(const std::string& name, std::int32_t start, std::uint8_t sequence) {
  Entry entry;
  entry.SetName(name);
  entry.Set(Attribute::kRead, true);
  entry.Set(Attribute::kWrite, true);
  entry.Set(Attribute::kDirectory, true);
  entry.SetLength(kDirSize);
  entry.SetStart(start);
  entry.SetSequence(sequence);
  return entry;
}

Outcome Make(Disc& disc, std::int32_t dirSector, const std::string& name,
             std::optional<std::int32_t>& made) {
  const std::int32_t run = FindFreeRun(disc, kDirSize);
  if (run < 0) return Refuse(disc, kNoSpaceMessage);
  EditedDirectory parent(disc, dirSector);
  if (parent.Now.IsFull()) return Refuse(disc, "Directory Full");
  const std::string cut = name.substr(0, kNameLength);
  if (NameCannotBeStored(cut)) return Refuse(disc, IllegalNameMessage(name));
  const Place place = parent.Now.FindPlace(cut);
  if (place.Taken) return Refuse(disc, "Directory " + cut + " Already Exists");

  const std::int32_t start = disc.FreeStart[static_cast<std::size_t>(run)];
  const Entry entry = MakeEntry(cut, start, parent.Now.BumpSequence());
  parent.Now.Insert(place.Slot, entry);
  parent.Write();
  disc.ImageChanged = true;
  disc.TheDisc.StoreBytes(SectorOffset(start), Directory::MakeEmpty(entry, dirSector).Raw());
  TakeSectors(disc, run, kDirSectors);
  made = start;
  return Outcome::kDone;
}

}  // namespace

std::optional<std::int32_t> NewDirectory(Disc& disc, std::int32_t dirSector,
                                         const std::string& name) {
  std::optional<std::int32_t> made;
  (void)InChange(disc, [&] { return Make(disc, dirSector, name, made); });
  return made;
}

}  // namespace sectorbox
