#include "disc/change/FreeMap.h"

#include <algorithm>
#include <array>
#include <vector>

#include "disc/catalogue/Adfs.h"
#include "disc/change/Compaction.h"

namespace sectorbox {
namespace {

using namespace format;

// A release that leaves this many runs compacts the disc, which keeps the list below the room that
// the map has for it.
constexpr std::int32_t kRunsThatCompact = 80;

struct Run {
  std::int32_t Start = 0;
  std::int32_t Length = 0;
  std::int32_t End() const { return Start + Length; }
};

std::vector<Run> ReadRuns(const Disc& disc) {
  std::vector<Run> runs;
  for (std::size_t i = 0; i < static_cast<std::size_t>(disc.FreeCount); ++i) {
    runs.push_back({disc.FreeStart[i], disc.FreeLen[i]});
  }
  return runs;
}

void KeepRuns(Disc& disc, const std::vector<Run>& runs) {
  disc.FreeCount = static_cast<std::int16_t>(runs.size());
  for (std::size_t i = 0; i < runs.size(); ++i) {
    disc.FreeStart[i] = runs[i].Start;
    disc.FreeLen[i] = runs[i].Length;
  }
}

// Runs that overlap, on a damaged disc, stay as they are: only runs that touch become one.
std::vector<Run> Merge(const std::vector<Run>& runs) {
  std::vector<Run> merged;
  for (const Run& run : runs) {
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
  for (std::size_t i = 0; i < static_cast<std::size_t>(disc.FreeCount); ++i) {
    const std::int64_t length = disc.FreeLen[i];
    // A compacted full disc keeps a run of length 0, which would suit an empty file otherwise.
    if (length > 0 && length * kSectorSize >= need) return static_cast<std::int32_t>(i);
  }
  return -1;
}

void TakeSectors(Disc& disc, std::int32_t run, std::int32_t sectors) {
  const auto at = static_cast<std::size_t>(run);
  std::vector<Run> runs = ReadRuns(disc);
  if (sectors >= runs[at].Length) {
    runs.erase(runs.begin() + run);
  } else {
    runs[at].Length -= sectors;
    runs[at].Start += sectors;
  }
  KeepRuns(disc, runs);
  WriteFreeMap(disc);
}

void ReleaseSectors(Disc& disc, std::int32_t start, std::int32_t sectors) {
  std::vector<Run> runs = ReadRuns(disc);
  const auto above =
      std::find_if(runs.begin(), runs.end(), [&](const Run& run) { return start < run.Start; });
  runs.insert(above, {start, sectors});
  runs = Merge(runs);
  // Only a damaged disc comes here with more runs than the map has room for. The sectors then
  // belong to nobody until a compaction finds them again.
  if (runs.size() <= static_cast<std::size_t>(kMapEntries)) KeepRuns(disc, runs);
  WriteFreeMap(disc);
  if (static_cast<std::int32_t>(runs.size()) >= kRunsThatCompact) CompactAfterRelease(disc);
}

void WriteFreeMap(Disc& disc) {
  const auto end = static_cast<std::uint8_t>(disc.FreeCount * kMapEntrySize);
  disc.TheDisc.Store(kMapEnd, end);
  for (std::int32_t i = 0; i < disc.FreeCount; ++i) {
    const auto index = static_cast<std::size_t>(i);
    Store24(disc, kMapStarts + kMapEntrySize * i, disc.FreeStart[index]);
    Store24(disc, kMapLengths + kMapEntrySize * i, disc.FreeLen[index]);
  }
  disc.TheDisc.Store(kMapChecksum0, MapChecksum(disc, kMapStarts));
  disc.TheDisc.Store(kMapChecksum1, MapChecksum(disc, kMapLengths));
}

}  // namespace sectorbox
