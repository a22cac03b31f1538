#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "disc/store/Disc.h"

// Formatting a partition of a card. The user isn't asked again: choosing a row and pressing Ok
// destroys what is on that partition.
namespace sectorbox {

struct CardSize {
  const char* Capacity;  // as the user reads it, a row of cmbCapacity
  std::int32_t Sectors;  // sectors of the disc that FormatCFImage makes
};

// The last is one sector smaller than 512 MB, as a partition has no more.
inline constexpr std::array<CardSize, 10> kCardSizes = {{
    {"1MB", 4096},
    {"2MB", 8192},
    {"4MB", 16384},
    {"8MB", 32768},
    {"16MB", 65536},
    {"32MB", 131072},
    {"64MB", 262144},
    {"128MB", 524288},
    {"256MB", 1048576},
    {"512MB", 2097151},
}};

// Where FormatCFDisc shows how far it is.
class FormatView {
 public:
  virtual ~FormatView() = default;
  // Comes once, before anything on the card is touched. From now on the user may press only Abort.
  virtual void FormatStarted() = 0;
  // Comes every 256 sectors of the wipe, right before the event pump. percent is 0 to 100. An Abort
  // there ends the wipe; the sectors wiped so far stay wiped.
  virtual void ShowFormat(const std::string& line, double percent) = 0;
};

// Makes an empty disc on the partition ImageName. The number that capacity begins with is the size
// of the disc in megabytes; a smaller partition gets a disc of its own size. Unless quick is set,
// every sector is zeroed first, odd bytes included. A quick format touches only the first seven
// sectors, and leaves the tail of the root directory as it was.
//
// Disc::ProgressRunning says whether the format goes on. The caller sets it before. If a handler
// clears it while events run, the wipe ends: the sectors wiped so far stay wiped, and no disc is
// made. The flag is also cleared, and the host is told, if the partition can't be opened, has no
// room for a map and a root, or fails to take a write. The disc that was there is taken away first,
// and the new one comes last (DiscReplacement.h); the host is told if there is none at the end. The
// store is closed in every case.
void FormatCFDisc(Disc& disc, FormatView& view, const std::string& capacity, bool quick);

// The same with the host's progress dialog, with two differences: a wipe zeroes the bytes of the
// disc and doesn't touch the odd bytes of the card, and the partition stays open. Abort ends the
// wipe as above.
void FormatCFImage(Disc& disc, std::int32_t sectors, bool wipe);

}  // namespace sectorbox
