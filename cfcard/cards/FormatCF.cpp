#include "cfcard/cards/FormatCF.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "cfcard/cards/OpenedCard.h"
#include "disc/ask/BusyPointer.h"
#include "disc/catalogue/Adfs.h"
#include "disc/format/Format.h"
#include "disc/image/NewDisc.h"
#include "disc/image/OpenImage.h"

namespace sectorbox {
namespace {

constexpr std::int32_t kWipeStep = 64;  // device sectors: as many as the transfer buffer holds
constexpr std::int32_t kShowEvery = 256;
constexpr std::int32_t kShowImageEvery = 1024;
constexpr std::int64_t kSectorsAMegabyte = 1024 * 1024 / format::kSectorSize;

std::string ProgressLine(std::int32_t sector, std::int32_t sectors) {
  return "Formatting Sectors " + std::to_string(sector) + " Of " + std::to_string(sectors);
}

double Percent(std::int32_t sector, std::int32_t sectors) {
  return 100.0 * sector / (sectors - 1);
}

// The sectors of a disc of that capacity ("8MB"), at most as many as the open partition has.
std::int32_t SectorsFor(Disc& disc, const std::string& capacity) {
  const std::int64_t most = std::max(disc.TheDisc.DiscSize(), 0);
  const std::int64_t megabytes = std::strtoll(capacity.c_str(), nullptr, 10);
  return static_cast<std::int32_t>(
      std::min(std::clamp<std::int64_t>(megabytes, 0, most) * kSectorsAMegabyte, most));
}

// One step of a wipe. False if the user has aborted it.
bool WipeStep(Disc& disc, FormatView& view, std::int32_t sector, std::int32_t count,
              std::int32_t sectors) {
  if (!disc.ProgressRunning) return false;
  disc.TheDisc.WriteCFSector(sector, count);
  if (sector % kShowEvery == 0) {
    view.ShowFormat(ProgressLine(sector, sectors), Percent(sector, sectors));
    disc.Host.PumpEvents();
  }
  return true;
}

bool WipePartition(Disc& disc, FormatView& view, std::int32_t sectors) {
  disc.TheDisc.ClearCFSector();
  for (std::int32_t i = 0; i <= sectors - kWipeStep - 1; i += kWipeStep) {
    if (!WipeStep(disc, view, i, kWipeStep, sectors)) return false;
  }
  // The last 64 sectors are always written one by one, also if a step of 64 has zeroed them
  // already. So the wipe reaches the end of a card whose size is no multiple of 64.
  for (std::int32_t i = std::max(sectors - kWipeStep, 0); i < sectors; ++i) {
    if (!WipeStep(disc, view, i, 1, sectors)) return false;
  }
  return true;
}

// Writes the map and the root over zeroes. The zeroes end within the root, before its tail: a quick
// format leaves bytes 1280 to 1791 as they were. Nothing reads them, as the root's first entry is
// empty. Formatted cards are compared byte by byte, so the limit stays where it always was.
void WriteStructures(Disc& disc, std::int32_t sectors) {
  const std::vector<std::uint8_t> zeroes(format::kDirSize);
  disc.TheDisc.StoreBytes(0, zeroes);
  WriteEmptyDisc(disc, sectors);
  ReadFreeMap(disc);
}

// True if the open partition takes a disc of that many sectors. If not, the host is told.
bool TakesDisc(Disc& disc, std::int32_t sectors) {
  if (!CardIsOpen(disc)) return false;
  if (sectors >= format::kFirstFreeSector) return true;
  disc.Host.Note(disc.ImageName + ": the partition is too small for a disc");
  return false;
}

bool FormatOpenPartition(Disc& disc, FormatView& view, const std::string& capacity, bool quick) {
  const std::int32_t sectors = SectorsFor(disc, capacity);
  if (!TakesDisc(disc, sectors)) return false;
  if (!quick && !WipePartition(disc, view, sectors)) return false;
  WriteStructures(disc, sectors);
  return true;
}

// Zeroes the sectors of the disc one by one. False if the user has aborted it.
bool WipeImage(Disc& disc, std::int32_t sectors) {
  const std::vector<std::uint8_t> zeroes(format::kSectorSize);
  disc.Host.OpenProgress("Format CF Card");
  for (std::int32_t i = 0; i < sectors && disc.ProgressRunning; ++i) {
    if (i % kShowImageEvery == 0) {
      disc.Host.ShowProgress(ProgressLine(i, sectors), Percent(i, sectors));
      disc.Host.PumpEvents();
    }
    disc.TheDisc.StoreBytes(SectorOffset(i), zeroes);
  }
  disc.Host.CloseProgress();
  return disc.ProgressRunning;
}

}  // namespace

void FormatCFDisc(Disc& disc, FormatView& view, const std::string& capacity, bool quick) {
  view.FormatStarted();
  disc.ImageChanged = false;
  const BusyPointer busy(disc.Host);
  const std::int32_t partition = disc.ImageName.empty() ? -1 : disc.ImageName.back() - '0';
  disc.TheDisc.OpenFile(disc.ImageName, kCF, partition, 0, 0);
  if (!FormatOpenPartition(disc, view, capacity, quick)) disc.ProgressRunning = false;
  disc.TheDisc.CloseFile();
}

void FormatCFImage(Disc& disc, std::int32_t sectors, bool wipe) {
  disc.ImageChanged = false;
  OpenCFPartition(disc, disc.ImageName);
  const std::int32_t there = std::min(sectors, disc.TheDisc.DiscSize());
  if (!TakesDisc(disc, there) || (wipe && !WipeImage(disc, there))) {
    disc.ProgressRunning = false;
    return;
  }
  WriteStructures(disc, there);
}

}  // namespace sectorbox
