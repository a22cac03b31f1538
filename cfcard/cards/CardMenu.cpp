#include "cfcard/cards/CardMenu.h"

#include "cfcard/cards/FormatCF.h"
#include "cfcard/cards/OpenedCard.h"
#include "disc/catalogue/Adfs.h"
#include "disc/host/HostError.h"
#include "disc/image/ImageFiles.h"
#include "disc/image/NewDisc.h"
#include "disc/image/NoAdfsDisc.h"
#include "disc/image/OpenImage.h"
#include "disc/image/SaveImage.h"
#include "disc/image/Session.h"

namespace sectorbox {
namespace {

void Begin(Disc& disc) {
  if (disc.ImageChanged) QuerySaveChanges(disc);
  disc.ProgressRunning = false;
}

void End(Disc& disc) {
  disc.Host.StoreRoot(disc.ImageName);
  disc.Host.EnableDiscEntries();
  disc.Host.RebuildTree();
  disc.Host.RefreshCaption();
}

bool OpenChosen(Disc& disc) {
  OpenCFPartition(disc, disc.ImageName);
  return CardIsOpen(disc);
}

// Asks before a file that is no disc replaces one. True if it may. RestoreImage itself refuses the
// card.
bool MayRestore(Disc& disc, const std::string& fileName) {
  if (disc.TheDisc.IsOpenMedium(fileName) || FileHoldsAdfsDisc(fileName)) return true;
  return disc.Host.AskYesNo(NoAdfsDiscText(fileName) + ". Restore It All The Same ?",
                            "Restore CF Card");
}

// What all entries have in common. dialog() lets the user choose. If the user chose, work() does
// the entry's work and gives true if the partition is open now. Otherwise the empty disc is opened.
template <typename Dialog, typename Work>
void RunEntry(Disc& disc, const Dialog& dialog, const Work& work) {
  Begin(disc);
  dialog();
  try {
    if (!disc.ProgressRunning || !work()) OpenBlankImage(disc);
  } catch (const HostError&) {
    // A host file failed. The panes still have to show the disc that is open now.
    if (disc.TheDisc.DeviceIsOpen()) {
      ReadFreeMap(disc);
    } else {
      OpenBlankImage(disc);
    }
    End(disc);
    throw;
  }
  End(disc);
}

}  // namespace

std::string BackupFileName(const std::string& imageName) {
  if (imageName.empty()) return "drive_.dat";
  return std::string("drive_") + imageName.front() + imageName.back() + ".dat";
}

void BackupPartition(Disc& disc, bool wholeCard) {
  const std::string name = disc.Host.AskSaveFileName(
      {"Backup CF Card Image As", FilterOfKind("ADFS Disc", kDat), BackupFileName(disc.ImageName)});
  if (!name.empty()) SaveDatImage(disc, name, wholeCard);
}

void RunCFCardOpen(Disc& disc, CardDialogs& dialogs) {
  RunEntry(
      disc, [&] { dialogs.ShowCF(); }, [&] { return OpenChosen(disc); });
}

void RunCFFormat(Disc& disc, CardDialogs& dialogs) {
  RunEntry(
      disc, [&] { dialogs.ShowFormatCF(); }, [&] { return OpenChosen(disc); });
}

void RunCFCardBackup(Disc& disc, CardDialogs& dialogs, bool wholeCard) {
  RunEntry(
      disc, [&] { dialogs.ShowCF(); },
      [&] {
        if (!OpenChosen(disc)) return false;
        BackupPartition(disc, wholeCard);
        // How much of it is used can be told of a disc only, so all of it was saved.
        if (!wholeCard && !IsAdfsDisc(disc)) disc.Host.Note(NoAdfsDiscText(disc.ImageName));
        return true;
      });
}

void RunCFCardRestore(Disc& disc, CardDialogs& dialogs) {
  RunEntry(
      disc, [&] { dialogs.ShowCF(); },
      [&] {
        const std::string name = ChooseImageFile(disc);
        if (name.empty() || !OpenChosen(disc) || !MayRestore(disc, name)) return false;
        // The user has been told of a failure. The panes show what is there then.
        (void)RestoreImage(disc, name);
        // The free map in memory is still that of the disc that was there before.
        return OpenChosen(disc);
      });
}

std::array<SizedFormat, kSizedFormats> SizedFormats() {
  std::array<SizedFormat, kSizedFormats> formats{};
  for (std::size_t i = 0; i < kCardSizes.size(); ++i) {
    formats[i] = {kCardSizes[i].Sectors, true};
    formats[kCardSizes.size() + i] = {kCardSizes[i].Sectors, false};
  }
  return formats;
}

void RunSizedFormat(Disc& disc, CardDialogs& dialogs, const SizedFormat& format) {
  Begin(disc);
  if (format.Wipe) {
    dialogs.ShowCF();
  } else {
    dialogs.ShowFormatCF();
  }
  const bool isChosen = disc.ProgressRunning;
  if (isChosen) FormatCFImage(disc, format.Sectors, format.Wipe);
  // The partition that the user chose may also have failed to open.
  if (!isChosen || !disc.TheDisc.DeviceIsOpen()) OpenBlankImage(disc);
  disc.Host.RebuildTree();
}

}  // namespace sectorbox
