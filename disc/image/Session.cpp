#include "disc/image/Session.h"

#include "disc/host/HostError.h"
#include "disc/host/HostFile.h"
#include "disc/image/ImageFiles.h"
#include "disc/image/SaveImage.h"

namespace sectorbox {

void QuerySaveChanges(Disc& disc) {
  // This comes first, so that the question comes once, also after No and after a cancelled dialog.
  disc.ImageChanged = false;
  try {
    if (!disc.TheDisc.InMemory()) {
      disc.TheDisc.CloseFile();
    } else if (disc.Host.AskYesNo("Save your changes now ?", "Changes will be lost")) {
      SaveImageAs(disc);
    }
  } catch (const HostError&) {
    // The user wanted to save and the host failed: the changes are in no file.
    disc.ImageChanged = true;
    throw;
  }
}

std::string ChooseImageFile(Disc& disc) {
  if (disc.ImageChanged) QuerySaveChanges(disc);
  std::string name = disc.Host.AskOpenFileName({"Open ADFS Disc Image", FilterOfImageFiles(), ""});
  if (name.empty()) return "";
  if (!HostFileExists(name)) {
    disc.Host.ShowMessage("File Not Found : " + name);
    return "";
  }
  return name;
}

}  // namespace sectorbox
