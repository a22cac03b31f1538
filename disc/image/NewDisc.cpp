#include "disc/image/NewDisc.h"

#include <algorithm>
#include <array>
#include <vector>

#include "disc/ask/BusyPointer.h"
#include "disc/catalogue/Adfs.h"
#include "disc/catalogue/Directories.h"
#include "disc/host/HostError.h"
#include "disc/image/ImageFiles.h"
#include "disc/image/Session.h"
#include "disc/medium/Companion.h"

namespace sectorbox {
namespace {

using namespace format;

constexpr std::int32_t kTracksBetweenPumps = 1024;
constexpr const char* kBlankName = "NewDisc.adl";

void ZeroTracks(Disc& disc, std::int32_t tracks, std::int32_t sectors) {
  const std::vector<std::uint8_t> zeros(static_cast<std::size_t>(sectors) * kSectorSize);
  for (std::int32_t i = 0; i < tracks; ++i) {
    disc.TheDisc.StoreBytes(SectorOffset(i) * sectors, zeros);
    if (i % kTracksBetweenPumps == 0) disc.Host.PumpEvents();
  }
}

std::string AskNewName(Disc& disc, const FileQuestion& question) {
  std::string path = disc.Host.AskSaveFileName(question);
  if (path.empty()) return "";
  disc.ImageName = path;
  disc.Host.RefreshCaption();
  return path;
}

// The dialog of each kind of disc that can be made anew.
struct NewDiscDialog {
  DiscType Type;
  std::string (*Ask)(Disc& disc);
};
constexpr std::array<NewDiscDialog, 3> kDialogs = {
    {{kAdf, NewDiscADF}, {kAdl, NewDiscADL}, {kDat, NewDiscDAT}}};

std::string AskNewName(Disc& disc, DiscType type) {
  const auto dialog = std::find_if(kDialogs.begin(), kDialogs.end(),
                                   [&](const auto& one) { return one.Type == type; });
  return dialog == kDialogs.end() ? "" : dialog->Ask(disc);
}

bool EndsInDat(const std::string& name) {
  return name.size() >= 4 && name.compare(name.size() - 4, 4, ".dat") == 0;
}

}  // namespace

void WriteEmptyDisc(Disc& disc, std::int32_t total) {
  MapSectors map = ReadMap(disc);
  const std::array<FreeRun, 1> runs = {{{kFirstFreeSector, total - kFirstFreeSector}}};
  map.SetDiscSize(total);
  map.SetRuns(runs);
  map.UpdateChecksums();
  WriteMap(disc, map);

  EditedDirectory root(disc, kRootSector);
  root.Now.SetSequence(1);
  root.Now.SetMarks();
  root.Now.SetName("$\r");
  root.Now.SetTitle("$\r");
  root.Write();
}

void CreateDisc(Disc& disc, const std::string& fileName, std::int32_t tracks, std::int32_t heads,
                std::int32_t sectors, DiscType type) {
  const BusyPointer busy(disc.Host);
  // The file is opened before the old disc's state is lost: a file that can't be opened changes
  // nothing.
  disc.TheDisc.OpenFile(fileName, type, tracks, heads, sectors);
  ReadFreeMap(disc);
  disc.ImageChanged = false;
  disc.DiscTracks = tracks;
  disc.DiscHeads = heads;
  disc.DiscSectors = sectors;
  ZeroTracks(disc, tracks * heads, sectors);
  WriteEmptyDisc(disc, tracks * heads * sectors);
  ReadFreeMap(disc);
  // Only this spelling counts. A floppy image has no companion.
  if (EndsInDat(fileName)) WriteCompanion(fileName, {tracks, heads});
}

void OpenBlankImage(Disc& disc) {
  disc.ImageName = kBlankName;
  CreateDisc(disc, disc.ImageName, kBlankDisc.Tracks, kBlankDisc.Heads, kBlankDisc.Sectors,
             kBlankDisc.DiscType);
}

std::string NewDiscADF(Disc& disc) {
  return AskNewName(disc,
                    {"Save ADFS Disc Image As", FilterOfKind("Create Disc", kAdf), "NewDisc.adf"});
}

std::string NewDiscADL(Disc& disc) {
  return AskNewName(disc,
                    {"Create ADFS Disc Image As", FilterOfKind("ADFS Disc", kAdl), kBlankName});
}

std::string NewDiscDAT(Disc& disc) {
  return AskNewName(disc,
                    {"Create ADFS Disc Image As", FilterOfKind("ADFS Disc", kDat), "NewDisc.dat"});
}

void RunNewDisc(Disc& disc, const NewDiscSize& size) {
  if (disc.ImageChanged) QuerySaveChanges(disc);
  const std::string former = disc.ImageName;
  const std::string path = AskNewName(disc, size.DiscType);
  if (path.empty()) return;
  try {
    CreateDisc(disc, path, size.Tracks, size.Heads, size.Sectors, size.DiscType);
  } catch (const HostError&) {
    // ImageName goes with the store: it is the former name unless the new file is open already.
    if (disc.TheDisc.FileName() != path) disc.ImageName = former;
    throw;
  }
  disc.Host.RebuildTree();
}

}  // namespace sectorbox
