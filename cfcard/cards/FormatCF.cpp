#include "cfcard/cards/FormatCF.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "cfcard/cards/OpenedCard.h"
#include "disc/ask/BusyPointer.h"
#include "disc/catalogue/Adfs.h"
#include "disc/format/Format.h"
#include "disc/image/DiscReplacement.h"
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

// Zeroes all sectors of a disc, odd bytes included.
class Wipe {
 public:
  Wipe(Disc& disc, FormatView& view, DiscReplacement& replacement, std::int32_t sectors)
      : disc_(disc), view_(view), replacement_(replacement), sectors_(sectors) {}

  // False if the user has aborted the wipe, or if the front can't be cleared.
  [[nodiscard]] bool Run() {
    if (!disc_.ProgressRunning) return false;
    disc_.TheDisc.ClearCFSector();
    for (std::int32_t i = 0; i <= sectors_ - kWipeStep - 1; i += kWipeStep) {
      if (!Step(i, kWipeStep)) return false;
    }
    // The last 64 sectors are always written one by one, also if a step of 64 has zeroed them
    // already. So the wipe reaches the end of a card whose size is no multiple of 64.
    for (std::int32_t i = std::max(sectors_ - kWipeStep, 0); i < sectors_; ++i) {
      if (!Step(i, 1)) return false;
    }
    return true;
  }

 private:
  // The front is always cleared to its end, so that an abort leaves no half of it.
  [[nodiscard]] bool Step(std::int32_t sector, std::int32_t count) {
    if (replacement_.HasBegun() && !disc_.ProgressRunning) return false;
    disc_.TheDisc.WriteCFSector(sector, count);
    const std::int32_t front = std::min(DiscReplacement::kFrontSectors, sectors_);
    if (!replacement_.HasBegun() && sector + count >= front &&
        !replacement_.Begin(DiscReplacement::Front::kIsCleared)) {
      return false;
    }
    if (sector % kShowEvery == 0) {
      view_.ShowFormat(ProgressLine(sector, sectors_), Percent(sector, sectors_));
      disc_.Host.PumpEvents();
    }
    return true;
  }

  Disc& disc_;
  FormatView& view_;
  DiscReplacement& replacement_;
  std::int32_t sectors_;
};

// The front of a partition with an empty disc. The map and the root come over zeroes. The zeroes
// end within the root, before its tail: a quick format leaves bytes 1280 to 1791 as they were.
// Nothing reads them, as the root's first entry is empty. Formatted cards are compared byte by
// byte, so the limit stays where it always was.
std::vector<std::uint8_t> EmptyFront(std::vector<std::uint8_t> former, std::int32_t sectors) {
  std::fill_n(former.begin(), format::kDirSize, std::uint8_t{0});
  const std::size_t used = format::kMapSize + format::kDirSize;
  std::ranges::copy(EmptyDisc(std::span(former).first(used), sectors), former.begin());
  return former;
}

std::vector<std::uint8_t> Zeroes(const std::vector<std::uint8_t>& front) {
  return std::vector<std::uint8_t>(front.size());
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
  DiscReplacement replacement(disc);
  const std::vector<std::uint8_t>& former = replacement.FormerFront();
  const bool begun = quick ? replacement.Begin(DiscReplacement::Front::kToBeCleared)
                           : Wipe(disc, view, replacement, sectors).Run();
  if (!begun || !replacement.Finish(EmptyFront(quick ? former : Zeroes(former), sectors))) {
    return false;
  }
  ReadFreeMap(disc);
  return true;
}

// Zeroes the sectors of the disc behind the front one by one. False if the user has aborted it.
bool WipeImage(Disc& disc, std::int32_t sectors) {
  const std::vector<std::uint8_t> zeroes(format::kSectorSize);
  disc.Host.OpenProgress("Format CF Card");
  for (std::int32_t i = 0; i < sectors && disc.ProgressRunning; ++i) {
    if (i % kShowImageEvery == 0) {
      disc.Host.ShowProgress(ProgressLine(i, sectors), Percent(i, sectors));
      disc.Host.PumpEvents();
    }
    if (i >= DiscReplacement::kFrontSectors) disc.TheDisc.StoreBytes(SectorOffset(i), zeroes);
  }
  disc.Host.CloseProgress();
  return disc.ProgressRunning;
}

// False if the user has aborted the wipe, or if the card has failed.
bool FormatImageOf(Disc& disc, std::int32_t sectors, bool wipe) {
  DiscReplacement replacement(disc);
  const std::vector<std::uint8_t>& former = replacement.FormerFront();
  if (!replacement.Begin(DiscReplacement::Front::kToBeCleared)) return false;
  if (wipe && !WipeImage(disc, sectors)) return false;
  if (!replacement.Finish(EmptyFront(wipe ? Zeroes(former) : former, sectors))) return false;
  ReadFreeMap(disc);
  return true;
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
  if (!TakesDisc(disc, there) || !FormatImageOf(disc, there, wipe)) disc.ProgressRunning = false;
}

}  // namespace sectorbox
