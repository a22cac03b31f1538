#include "disc/catalogue/Directories.h"
#include "disc/change/Change.h"
#include "disc/change/DirectoryEdit.h"
#include "disc/change/Mutation.h"
#include "disc/format/Names.h"

namespace sectorbox {
namespace {

Outcome Rename(Disc& disc, const std::string& newName, const std::string& oldName,
               std::int32_t dirSector, bool ignoreLock, std::int32_t start) {
  EditedDirectory directory(disc, dirSector);
  const std::int32_t slot = directory.Now.Find(oldName, start);
  if (slot < 0) return Outcome::kRefused;
  Entry entry = directory.Now.At(slot);
  if (!ignoreLock && entry.IsLocked()) {
    return Refuse(disc, entry.IsDirectory() ? "Cannot Rename Locked Directory : " + oldName
                                            : "Cannot Rename Locked File : " + oldName);
  }
  const std::string name = newName.substr(0, format::kNameLength);
  // The look-up is blind to case and finds the entry itself too: a change of case alone is refused.
  if (directory.Now.Find(name) >= 0) return Refuse(disc, name + " Already Exists");
  if (name.empty() || HoldsIllegalCharacters(name, " -.:*#$&@^")) {
    return Refuse(disc, IllegalNameMessage(name));
  }
  entry.Rename(name);
  entry.SetSequence(directory.Now.BumpSequence());
  directory.Now.Remove(slot);
  // The padded name decides the place: its carriage return sorts it before any longer name that
  // begins with it.
  directory.Now.Insert(directory.Now.FindPlace(PadName(name)).Slot, entry);
  directory.Write();
  disc.ImageChanged = true;
  CopyNameToDirectory(disc, entry, format::kNameLength);
  return Outcome::kDone;
}

}  // namespace

Outcome RenameEntry(Disc& disc, const std::string& newName, const std::string& oldName,
                    std::int32_t dirSector, bool ignoreLock, std::int32_t start) {
  return InChange(disc,
                  [&] { return Rename(disc, newName, oldName, dirSector, ignoreLock, start); });
}

}  // namespace sectorbox
