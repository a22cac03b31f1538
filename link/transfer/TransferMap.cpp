#include "link/transfer/TransferMap.h"

#include "disc/catalogue/Adfs.h"
#include "disc/format/Format.h"
#include "link/wire/Trace.h"

namespace sectorbox {
namespace {

using format::kMapDiscSize;
using format::kMapEnd;
using format::kMapEntrySize;
using format::kMapLengths;
using format::kMapStarts;

using MapBytes = std::span<const std::uint8_t, 512>;

std::int32_t Number24(MapBytes map, std::int32_t at) {
  const auto i = static_cast<std::size_t>(at);
  return map[i] | map[i + 1] << 8 | map[i + 2] << 16;
}

void TraceSum(Link& link, const char* name, std::int64_t sectors) {
  TraceLine(link, name + Hex(static_cast<std::uint64_t>(sectors), 6) + ", " +
                      std::to_string(sectors) + " sectors\r");
}

}  // namespace

TransferMap ParseTransferMap(Link& link, std::span<const std::uint8_t, 512> sectors) {
  TransferMap map;
  map.DiscSize = Number24(sectors, kMapDiscSize);
  TraceLine(link, "Address : Length\r");
  std::int32_t totalFree = 0;
  const std::int32_t runs = sectors[kMapEnd] / kMapEntrySize;
  for (std::int32_t i = 0; i < runs; ++i) {
    map.FreeStart.push_back(Number24(sectors, kMapStarts + kMapEntrySize * i));
    map.FreeLen.push_back(Number24(sectors, kMapLengths + kMapEntrySize * i));
    totalFree += map.FreeLen.back();
    TraceLine(link, Hex(static_cast<std::uint32_t>(map.FreeStart.back()), 6) + "  : " +
                        Hex(static_cast<std::uint32_t>(map.FreeLen.back()), 6) + "\r");
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
