#include "disc/change/DirectoryEdit.h"
#include "disc/change/Mutation.h"
#include "disc/format/Names.h"

namespace sectorbox {

Outcome RenameEntry(Disc& disc, const std::string& NewName, const std::string& OldName,
                    std::int32_t DirSector, bool IgnoreLock) {
  EditedDirectory directory(disc, DirSector);
  const std::int32_t slot = directory.Now.Find(OldName);
  if (slot < 0) return Outcome::kRefused;
  Entry entry = directory.Now.At(slot);
  if (!IgnoreLock && entry.IsLocked()) {
    return Refuse(disc, entry.IsDirectory() ? "Cannot Rename Locked Directory : " + OldName
                                            : "Cannot Rename Locked File : " + OldName);
  }
  const std::string name = NewName.substr(0, format::kNameLength);
  // The look-up is blind to case and finds the entry itself too: a change of case alone is refused.
  if (directory.Now.Find(name) >= 0) return Refuse(disc, name + " Already Exists");
  if (name.empty() || HoldsIllegalCharacters(name, " -.:*#$&@^")) {
    return Refuse(disc, IllegalNameMessage(name));
  }
  entry.Rename(name);
  entry.SetSequence(directory.Now.BumpSequence());
  directory.Now.Remove(slot);
  // The padded name is what is compared: its carriage return sorts before any longer name that
  // begins with it.
  directory.Now.Insert(directory.Now.FindPlace(PadName(name)).Slot, entry);
  directory.Write();
  disc.ImageChanged = true;
  CopyNameToDirectory(disc, entry, format::kNameLength);
  return Outcome::kDone;
}

}  // namespace sectorbox
