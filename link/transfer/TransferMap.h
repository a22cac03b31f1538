#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "link/wire/Link.h"

namespace sectorbox {

// What a transfer takes from a free space map. The map is that of the BBC's drive or of the image
// file; the disc that is open in the program has no part in a transfer.
struct TransferMap {
  std::int32_t DiscSize = 0;  // sectors on the disc
  // The free runs in the order of the map. If there is none, or the last one doesn't end at the
  // disc's end, a run of length 0 at the disc's end follows. So each used area ends where a run
  // starts.
  std::vector<std::int32_t> FreeStart;
  std::vector<std::int32_t> FreeLen;
  std::int32_t UsedSectors = 0;  // the size without the free runs; negative if the map is nonsense

  [[nodiscard]] std::int32_t RunCount() const {
    return static_cast<std::int32_t>(FreeStart.size());
  }
};

// Takes the map out of sectors 0 and 1 of a disc, 512 bytes, and traces runs and sums. The bytes
// may be anything: there are at most 85 runs, in any order, with any starts and lengths.
[[nodiscard]] TransferMap ParseTransferMap(Link& link, std::span<const std::uint8_t, 512> sectors);

}  // namespace sectorbox
