#include "disc/image/NewDisc.h"

#include <vector>

#include "disc/ask/BusyPointer.h"
#include "disc/catalogue/Adfs.h"
#include "disc/host/HostError.h"
#include "disc/image/Companion.h"
#include "disc/image/Session.h"

namespace sectorbox {
namespace {

using namespace format;

constexpr std::int32_t kTracksBetweenPumps = 1024;

void StoreText(Disc& disc, std::int64_t offset, std::string_view text) {
  disc.TheDisc.StoreBytes(
      offset, std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
}

void WriteEmptyMap(Disc& disc, std::int32_t total) {
  disc.TheDisc.Store(kMapStarts, kFirstFreeSector);
  Store24(disc, kMapDiscSize, total);
  Store24(disc, kMapLengths, total - kFirstFreeSector);
  disc.TheDisc.Store(kMapEnd, kMapEntrySize);
}

void WriteEmptyRoot(Disc& disc) {
  const std::int64_t root = SectorOffset(kRootSector);
  disc.TheDisc.Store(root + kDirSequence, 1);
  StoreText(disc, root + kDirMark, kHugo);
  disc.TheDisc.Store(root + kDirSequenceCopy, 1);
  StoreText(disc, root + kDirMarkCopy, kHugo);
  StoreText(disc, root + kDirName, "$\r");
  StoreText(disc, root + kDirTitle, "$\r");
}

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

std::string AskNewName(Disc& disc, std::int16_t disctype) {
  if (disctype == kAdf) return NewDiscADF(disc);
  if (disctype == kAdl) return NewDiscADL(disc);
  return NewDiscDAT(disc);
}

bool EndsInDat(const std::string& name) {
  return name.size() >= 4 && name.compare(name.size() - 4, 4, ".dat") == 0;
}

}  // namespace

void WriteEmptyDisc(Disc& disc, std::int32_t total) {
  WriteEmptyMap(disc, total);
  WriteEmptyRoot(disc);
  disc.TheDisc.Store(kMapChecksum0, MapChecksum(disc, 0));
  disc.TheDisc.Store(kMapChecksum1, MapChecksum(disc, kSectorSize));
}

void CreateDisc(Disc& disc, const std::string& FileName, std::int32_t Tracks, std::int32_t Heads,
                std::int32_t Sectors, std::int16_t disctype) {
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

void RunNewDisc(Disc& disc, const DiscGeometry& geometry) {
  if (disc.ImageChanged) QuerySaveChanges(disc);
  const std::string former = disc.ImageName;
  const std::string path = AskNewName(disc, geometry.DiscType);
  if (path.empty()) return;
  try {
    CreateDisc(disc, path, geometry.Tracks, geometry.Heads, geometry.Sectors, geometry.DiscType);
  } catch (const HostError&) {
    // The name goes with the store: the former one unless the new file was already open.
    if (disc.TheDisc.FileName() != path) disc.ImageName = former;
    throw;
  }
  disc.Host.RebuildTree();
}

}  // namespace sectorbox
