#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "link/wire/Link.h"

namespace sectorbox {

// What a transfer takes from a free space map. The link reads the map by itself: the open disc has
// no part in a transfer.
struct TransferMap {
  std::int32_t DiscSize = 0;  // sectors on the disc
  // The free runs in map order, FreeStart.size() of them. Where the last one doesn't end at the
  // disc's end, or there is none, a run of length 0 at the disc's end follows, so that each used
  // area ends at the start of a run.
  std::vector<std::int32_t> FreeStart;
  std::vector<std::int32_t> FreeLen;
  std::int32_t UsedSectors = 0;  // the size without the free runs; negative on a nonsense map

  std::int32_t RunCount() const { return static_cast<std::int32_t>(FreeStart.size()); }
};

// Reads sectors 0 and 1 of a disc, 512 bytes, and traces runs and sums. Any bytes will do: there
// are at most 85 runs, in any order, with any starts and lengths.
TransferMap ParseTransferMap(Link& link, std::span<const std::uint8_t, 512> sectors);

}  // namespace sectorbox
