#include "cfcard/cards/ScanCFCards.h"

#include "cfcard/cards/OpenedCard.h"
#include "disc/catalogue/Adfs.h"
#include "disc/format/Format.h"
#include "disc/host/RawDevice.h"

namespace sectorbox {
namespace {

constexpr std::int32_t kPartitions = 2;

void ScanPartition(Disc& disc, const CardSource& source, char digit, bool includeNonADFS,
                   std::vector<std::string>& rows) {
  if (disc.TheDisc.DiscSize() <= 0) return;
  // Only the first mark of the root directory decides. The map and its checksums aren't looked at,
  // so that the user can still pick a damaged card and look at it.
  const bool isAdfs = IsDirectory(disc, format::kRootSector);
  if (isAdfs) {
    rows.push_back(source.Label + ": - Partition " + digit);
  } else if (includeNonADFS) {
    rows.push_back(source.Label + ": - Non ADFS Partition " + digit);
  }
}

}  // namespace

CardScan ScanCards(Disc& disc, const std::vector<CardSource>& sources, bool includeNonADFS) {
  CardScan scan;
  for (const CardSource& source : sources) {
    for (std::int32_t partition = 0; partition < kPartitions; ++partition) {
      const char digit = static_cast<char>('0' + partition);
      disc.TheDisc.OpenFile(source.Device + "," + digit, kCF, partition, 0, 0);
      if (disc.TheDisc.DeviceIsOpen()) {
        ScanPartition(disc, source, digit, includeNonADFS, scan.Rows);
      } else if (partition == 0 && !IsNoMedium(disc.TheDisc.DeviceError())) {
        scan.AllOpened = false;
        NoteNotOpened(disc, source.Path);
      }
      // No byte access may open it again: the user hasn't chosen this device.
      disc.TheDisc.Abandon();
    }
  }
  return scan;
}

CardScan ScanCFCards(Disc& disc, CardDrives& drives, bool includeNonADFS) {
  drives.Refresh();
  std::vector<CardSource> sources;
  for (char letter = kFirstLetter; letter <= kLastLetter; ++letter) {
    std::string text;
    const std::string label(1, letter);
    if (drives.DriveTypeText(label, text) == kRemovableDrive) {
      sources.push_back({label, label + ":", drives.PathOf(letter)});
    }
  }
  return ScanCards(disc, sources, includeNonADFS);
}

std::string ImageNameOfRow(const std::string& row) {
  if (row.empty()) return ",";
  return row.substr(0, 2) + "," + row.back();
}

}  // namespace sectorbox
