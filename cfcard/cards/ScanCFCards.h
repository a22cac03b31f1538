#pragma once

#include <string>
#include <vector>

#include "cfcard/cards/CardDrives.h"
#include "disc/store/Disc.h"

// Finding the partitions of cards.
namespace sectorbox {

inline constexpr char kNoCardText[] = "No CF Card Detected";
inline constexpr char kSelectCardText[] = "Please Select CF Card";

// One device to look at: how a row names it ("E", or a path), how the store opens it ("E:", or the
// path), and its path, by which the host is told that it can't be opened.
struct CardSource {
  std::string Label;
  std::string Device;
  std::string Path;
};

struct CardScan {
  std::vector<std::string> Rows;  // "E: - Partition 0", "E: - Non ADFS Partition 1"
  bool AllOpened = true;          // false when a device couldn't be opened (the host was told)
};

// The rows of the card list, over all letters in turn, partition 0 before partition 1. A partition
// counts as one of ADFS by the first mark of its root directory alone. Others are listed only with
// includeNonADFS. A device that can't be opened adds no row, and the host is told why; an empty
// reader adds none and isn't worth a word.
//
// The scan opens and closes the store: the image that was open before is gone, unless no drive at
// all was there to look at. Who calls has dealt with unsaved changes, and opens something after.
CardScan ScanCFCards(Disc& disc, CardDrives& drives, bool includeNonADFS);

// The same over given devices.
CardScan ScanCards(Disc& disc, const std::vector<CardSource>& sources, bool includeNonADFS);

// The name under which the store opens the partition of a row: "E: - Partition 0" gives "E:,0". An
// empty row, of a list in which nothing was chosen, gives a lone comma, which no open can use.
std::string ImageNameOfRow(const std::string& row);

}  // namespace sectorbox
