#pragma once

#include <string>
#include <vector>

#include "cfcard/cards/CardDrives.h"
#include "disc/store/Disc.h"

// Finding the partitions of cards.
namespace sectorbox {

inline constexpr char kNoCardText[] = "No CF Card Detected";
inline constexpr char kSelectCardText[] = "Please Select CF Card";

// One device to look at.
struct CardSource {
  std::string Label;   // its name in a row: "E", or its path
  std::string Device;  // its name for the store: "E:", or its path
  std::string Path;    // its name in the message that it can't be opened
};

struct CardScan {
  std::vector<std::string> Rows;  // "E: - Partition 0", "E: - Non ADFS Partition 1"
  bool AllOpened = true;          // false if a device couldn't be opened (the host was told)
};

// Makes the rows of the card list, over all letters in turn, partition 0 before partition 1. Only
// the first mark of its root directory decides whether a partition is one of ADFS. Others are
// listed only with includeNonADFS. A device that can't be opened adds no row, and the host is told
// why. An empty reader adds no row, and the host isn't told.
//
// The scan opens and closes the store, so the image that was open before is gone, unless there was
// no drive to look at. Before the call the caller has dealt with unsaved changes; after it the
// caller opens something.
[[nodiscard]] CardScan ScanCFCards(Disc& disc, CardDrives& drives, bool includeNonADFS);

// The same over the devices of a list.
[[nodiscard]] CardScan ScanCards(Disc& disc, const std::vector<CardSource>& sources,
                                 bool includeNonADFS);

// The name by which the store opens the partition of a row: "E: - Partition 0" gives "E:,0". The
// row is empty if nothing is chosen in the list; the result is then a lone comma, which no open can
// use.
[[nodiscard]] std::string ImageNameOfRow(const std::string& row);

}  // namespace sectorbox
