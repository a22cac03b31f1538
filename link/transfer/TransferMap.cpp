#include "link/transfer/TransferMap.h"

#include "disc/format/Format.h"
#include "disc/format/MapSectors.h"
#include "disc/format/Text.h"
#include "link/wire/Trace.h"

namespace sectorbox {
namespace {

void TraceSum(Link& link, const char* name, std::int64_t sectors) {
  TraceLine(link, name + Hex(static_cast<std::uint64_t>(sectors), 6) + ", " +
                      std::to_string(sectors) + " sectors\r");
}

}  // namespace

TransferMap ParseTransferMap(Link& link, std::span<const std::uint8_t, 512> sectors) {
  const MapSectors read(sectors);
  TransferMap map;
  map.DiscSize = read.DiscSize();
  TraceLine(link, "Address : Length\r");
  std::int32_t totalFree = 0;
  const std::int32_t runs = read.EndPointer() / format::kMapEntrySize;
  for (std::int32_t i = 0; i < runs; ++i) {
    const FreeRun run = read.RunAt(i);
    map.FreeStart.push_back(run.Start);
    map.FreeLen.push_back(run.Length);
    totalFree += run.Length;
    TraceLine(link, Hex(static_cast<std::uint32_t>(run.Start), 6) + "  : " +
                        Hex(static_cast<std::uint32_t>(run.Length), 6) + "\r");
  }
  if (runs == 0 || map.FreeStart.back() + map.FreeLen.back() != map.DiscSize) {
    map.FreeStart.push_back(map.DiscSize);
    map.FreeLen.push_back(0);
  }
  map.UsedSectors = map.DiscSize - totalFree;
  TraceSum(link, "Size : ", map.DiscSize);
  TraceSum(link, "Free : ", totalFree);
  TraceSum(link, "Used : ", map.UsedSectors);
  return map;
}

}  // namespace sectorbox
