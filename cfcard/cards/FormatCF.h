#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "disc/store/Disc.h"

// Formatting a partition of a card. Nobody is asked before: the choice of a row and Ok destroys
// what is on that partition.
namespace sectorbox {

struct CardSize {
  const char* Capacity;  // row of cmbCapacity
  std::int32_t Sectors;  // of the disc that FormatCFImage makes
};

// The last is a sector short of 512 MB, which is as many as a partition has.
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
  // Once, before anything is touched: from here on only Abort may be pressed.
  virtual void FormatStarted() = 0;
  // Every 256 sectors of the wipe, right before the event pump.
  virtual void ShowFormat(const std::string& line, double percent) = 0;
};

// Makes an empty disc on the partition ImageName. capacity's leading number is its size in
// megabytes, an upper limit: the partition's own size counts if that is less. Unless quick, every
// sector is zeroed first, odd bytes included; a quick format touches only the first seven sectors,
// and leaves the tail of the root directory as it was.
//
// Disc::ProgressRunning is the go-on flag: the caller sets it before, and whoever clears it while
// events are pumped ends the wipe; the sectors wiped so far stay wiped and no disc is made. It is
// also cleared when the partition can't be opened or has no room for a map and a root, and the host
// is told. The store is closed in every case.
void FormatCFDisc(Disc& disc, FormatView& view, const std::string& capacity, bool quick);

// The same job with the host's progress dialog, in two differences: a wipe zeroes the bytes of the
// disc and leaves the odd bytes of the card alone, and the partition stays open. Abort ends the
// wipe as above.
void FormatCFImage(Disc& disc, std::int32_t sectors, bool wipe);

}  // namespace sectorbox
