#include "disc/image/NewDisc.h"

#include <algorithm>
#include <array>
#include <vector>

#include "disc/ask/BusyPointer.h"
#include "disc/catalogue/Adfs.h"
#include "disc/catalogue/Directories.h"
#include "disc/host/HostError.h"
#include "disc/image/Session.h"
#include "disc/medium/Companion.h"

namespace sectorbox {
namespace {

using namespace format;

constexpr std::int32_t kTracksBetweenPumps = 1024;

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

std::string AskNewName(Disc& disc, DiscType disctype) {
  const auto dialog = std::find_if(kDialogs.begin(), kDialogs.end(),
                                   [&](const auto& one) { return one.Type == disctype; });
  return dialog->Ask(disc);
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

void CreateDisc(Disc& disc, const std::string& FileName, std::int32_t Tracks, std::int32_t Heads,
                std::int32_t Sectors, DiscType disctype) {
  const BusyPointer busy(disc.Host);
  // Opened before the old disc's state is given up: a name that can't be opened changes nothing.
  disc.TheDisc.OpenFile(FileName, disctype, Tracks, Heads, Sectors);
  ReadFreeMap(disc);
  disc.ImageChanged = false;
  disc.DiscTracks = Tracks;
  disc.DiscHeads = Heads;
  disc.DiscSectors = Sectors;
  ZeroTracks(disc, Tracks * Heads, Sectors);
  WriteEmptyDisc(disc, Tracks * Heads * Sectors);
  ReadFreeMap(disc);
  // Only this very spelling of the extension: a floppy image has no companion.
  if (EndsInDat(FileName)) WriteCompanion(FileName, {Tracks, Heads});
}

std::string NewDiscADF(Disc& disc) {
  return AskNewName(disc, {"Save ADFS Disc Image As", "Create Disc (*.adf)|*.adf", "NewDisc.adf"});
}

std::string NewDiscADL(Disc& disc) {
  return AskNewName(disc, {"Create ADFS Disc Image As", "ADFS Disc (*.adl)|*.adl", "NewDisc.adl"});
}

std::string NewDiscDAT(Disc& disc) {
  return AskNewName(disc, {"Create ADFS Disc Image As", "ADFS Disc (*.dat)|*.dat", "NewDisc.dat"});
}

void RunNewDisc(Disc& disc, const NewDiscSize& size) {
  if (disc.ImageChanged) QuerySaveChanges(disc);
  const std::string former = disc.ImageName;
  const std::string path = AskNewName(disc, size.DiscType);
  if (path.empty()) return;
  try {
    CreateDisc(disc, path, size.Tracks, size.Heads, size.Sectors, size.DiscType);
  } catch (const HostError&) {
    // The name goes with the store: the former one unless the new file was already open.
    if (disc.TheDisc.FileName() != path) disc.ImageName = former;
    throw;
  }
  disc.Host.RebuildTree();
}

}  // namespace sectorbox
