// Attributes, addresses, titles and the boot option: changes that move nothing.

#include "disc/catalogue/Directories.h"
#include "disc/change/Change.h"
#include "disc/change/DirectoryEdit.h"
#include "disc/change/Mutation.h"
#include "disc/format/Names.h"

namespace sectorbox {
namespace {

// The bytes of a name whose top bits are the attributes that a user can set.
constexpr std::int32_t kAttributeBytes = 3;

// Calls change with the entry of that name and start, gives the entry the directory's next sequence
// number, and writes both. The changed entry; none if there is no such entry.
template <typename Change>
std::optional<Entry> ChangeEntry(Disc& disc, std::int32_t dirSector, const std::string& name,
                                 std::int32_t start, Change change) {
  EditedDirectory directory(disc, dirSector);
  const std::int32_t slot = directory.Now.Find(name, start);
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

Outcome SetEntryAttributes(Disc& disc, std::int32_t dirSector, const std::string& name, bool read,
                           bool write, bool locked, std::int32_t start) {
  return InChange(disc, [&] {
    const auto entry = ChangeEntry(disc, dirSector, name, start, [&](Entry& changed) {
      changed.Set(Attribute::kRead, read);
      changed.Set(Attribute::kWrite, write);
      changed.Set(Attribute::kLocked, locked);
    });
    if (entry) CopyNameToDirectory(disc, *entry, kAttributeBytes);
    return Outcome::kDone;
  });
}

Outcome SetEntryAddresses(Disc& disc, std::int32_t dirSector, const std::string& name,
                          const std::string& load, const std::string& exec, std::int32_t start) {
  return InChange(disc, [&] {
    (void)ChangeEntry(disc, dirSector, name, start, [&](Entry& changed) {
      changed.SetExec(ParseAddress(exec));
      changed.SetLoad(ParseAddress(load));
    });
    return Outcome::kDone;
  });
}

Outcome SetDirTitle(Disc& disc, std::int32_t dirSector, const std::string& title) {
  const std::string cut = title.substr(0, format::kTitleLength);
  // A title may hold blanks, which a name may not.
  if (HoldsIllegalCharacters(cut, "-.:*#$&@^")) {
    return Refuse(disc, "Title " + cut + " Contains Illegal Characters");
  }
  return InChange(disc, [&] {
    EditedDirectory directory(disc, dirSector);
    directory.Now.SetTitle(PadTitle(cut));
    (void)directory.Now.BumpSequence();
    directory.Write();
    disc.ImageChanged = true;
    return Outcome::kDone;
  });
}

// The map's checksum stays stale, and the program won't ask the user to save: the option of an
// image in memory reaches its file only if something else leads to a save. The window has always
// worked so.
Outcome SetBootOption(Disc& disc, std::uint8_t option, MapSums sums) {
  return InChange(disc, [&] {
    MapSectors map = ReadMap(disc);
    map.SetBootOption(option);
    if (sums == MapSums::kUpdate) map.UpdateChecksums();
    WriteMap(disc, map);
    return Outcome::kDone;
  });
}

}  // namespace sectorbox
