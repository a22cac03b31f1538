#include "disc/change/FreeMap.h"

#include <algorithm>
#include <vector>

#include "disc/change/Compaction.h"

namespace sectorbox {
namespace {

using namespace format;

// A release that leaves at least this many runs compacts the disc, so that the list always fits the
// map.
constexpr std::size_t kRunsThatCompact = 80;

// Runs that touch become one. Runs that overlap, on a damaged disc, stay as they are.
std::vector<FreeRun> Merge(const std::vector<FreeRun>& runs) {
  std::vector<FreeRun> merged;
  for (const FreeRun& run : runs) {
    if (!merged.empty() && merged.back().End() == run.Start) {
      merged.back().Length += run.Length;
    } else {
      merged.push_back(run);
    }
  }
  return merged;
}

}  // namespace

std::int32_t FindFreeRun(const Disc& disc, std::uint32_t need) {
  const std::vector<FreeRun> runs = FreeRuns(disc);
  // A compacted full disc keeps a run of length 0. Without this test an empty file would take it.
  const auto found = std::find_if(runs.begin(), runs.end(), [&](const FreeRun& run) {
    return run.Length > 0 && SectorOffset(run.Length) >= need;
  });
  return found == runs.end() ? -1 : static_cast<std::int32_t>(found - runs.begin());
}

void TakeSectors(Disc& disc, std::int32_t run, std::int32_t sectors) {
  std::vector<FreeRun> runs = FreeRuns(disc);
  const auto taken = runs.begin() + run;
  if (sectors >= taken->Length) {
    runs.erase(taken);
  } else {
    taken->Length -= sectors;
    taken->Start += sectors;
  }
  KeepFreeRuns(disc, runs);
  WriteFreeMap(disc);
}

void ReleaseSectors(Disc& disc, std::int32_t start, std::int32_t sectors) {
  std::vector<FreeRun> runs = FreeRuns(disc);
  const auto above =
      std::find_if(runs.begin(), runs.end(), [&](const FreeRun& run) { return start < run.Start; });
  runs.insert(above, {start, sectors});
  runs = Merge(runs);
  // Only a damaged disc has more runs here than the map has room for. The released sectors are then
  // neither free nor used until a compaction.
  if (runs.size() <= static_cast<std::size_t>(kMapEntries)) KeepFreeRuns(disc, runs);
  WriteFreeMap(disc);
  if (runs.size() >= kRunsThatCompact) CompactAfterRelease(disc);
}

void WriteFreeMap(Disc& disc) {
  MapSectors map = ReadMap(disc);
  map.SetRuns(FreeRuns(disc));
  map.UpdateChecksums();
  WriteMap(disc, map);
}

}  // namespace sectorbox
