// Attributes, addresses, titles and the boot option: changes that move nothing.

#include "disc/change/DirectoryEdit.h"
#include "disc/change/Mutation.h"
#include "disc/format/Names.h"

namespace sectorbox {
namespace {

// The bytes of a name whose top bits are the attributes that a user can set.
constexpr std::int32_t kAttributeBytes = 3;

// Changes an entry of a directory by change, with the directory's next sequence number. None if
// there is no such entry.
template <typename Change>
std::optional<Entry> ChangeEntry(Disc& disc, std::int32_t DirSector, const std::string& Name,
                                 Change change) {
  EditedDirectory directory(disc, DirSector);
  const std::int32_t slot = directory.Now.Find(Name);
  if (slot < 0) return std::nullopt;
  Entry entry = directory.Now.At(slot);
  change(entry);
  entry.SetSequence(directory.Now.BumpSequence());
  directory.Now.Put(slot, entry);
  directory.Write();
  disc.ImageChanged = true;
  return entry;
}

}  // namespace

void SetEntryAttributes(Disc& disc, std::int32_t DirSector, const std::string& Name, bool Read,
                        bool Write, bool Locked) {
  const auto entry = ChangeEntry(disc, DirSector, Name, [&](Entry& changed) {
    changed.Set(Attribute::kRead, Read);
    changed.Set(Attribute::kWrite, Write);
    changed.Set(Attribute::kLocked, Locked);
  });
  if (entry) CopyNameToDirectory(disc, *entry, kAttributeBytes);
}

void SetEntryAddresses(Disc& disc, std::int32_t DirSector, const std::string& Name,
                       const std::string& Load, const std::string& Exec) {
  (void)ChangeEntry(disc, DirSector, Name, [&](Entry& changed) {
    changed.SetExec(ParseAddress(Exec));
    changed.SetLoad(ParseAddress(Load));
  });
}

Outcome SetDirTitle(Disc& disc, std::int32_t DirSector, const std::string& Title) {
  const std::string title = Title.substr(0, format::kTitleLength);
  // A title may hold blanks, which a name may not.
  if (HoldsIllegalCharacters(title, "-.:*#$&@^")) {
    return Refuse(disc, "Title " + title + " Contains Illegal Characters");
  }
  EditedDirectory directory(disc, DirSector);
  directory.Now.SetTitle(PadTitle(title));
  (void)directory.Now.BumpSequence();
  directory.Write();
  disc.ImageChanged = true;
  return Outcome::kDone;
}

// The map's checksum stays stale and no save will be asked for: the option reaches an image in
// memory only if something else prompts a save. The window has always worked so.
void SetBootOption(Disc& disc, std::uint8_t option) {
  MapSectors map = ReadMap(disc);
  map.SetBootOption(option);
  WriteMap(disc, map);
}

void UpdateMapChecksums(Disc& disc) {
  MapSectors map = ReadMap(disc);
  map.UpdateChecksums();
  WriteMap(disc, map);
}

}  // namespace sectorbox
